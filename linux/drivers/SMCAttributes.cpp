#include "linux/drivers/SMCAttributes.h"

#include <fcntl.h>
#include <sys/file.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace orv {

FileDescriptor SysfsAttributes::open(const std::string& path, Access access)
{
    const int mode = access == Access::reading ? O_RDONLY : O_RDWR;
    return FileDescriptor(::open(path.c_str(), mode | O_CLOEXEC | O_NONBLOCK));
}

bool SysfsAttributes::exists(const std::string& path)
{
    return ::access(path.c_str(), F_OK) == 0;
}

ssize_t SysfsAttributes::read(int descriptor, std::span<char> bytes)
{
    return ::pread(descriptor, bytes.data(), bytes.size(), 0);
}

ssize_t SysfsAttributes::write(int descriptor, std::string_view text)
{
    return ::pwrite(descriptor, text.data(), text.size(), 0);
}

bool SysfsAttributes::lock(int descriptor)
{
    return ::flock(descriptor, LOCK_EX | LOCK_NB) == 0;
}

void SysfsAttributes::unlock(int descriptor)
{
    ::flock(descriptor, LOCK_UN);
}

void SysfsAttributes::pause()
{
    constexpr timespec fiveMilliseconds{.tv_sec = 0, .tv_nsec = 5'000'000};
    ::nanosleep(&fiveMilliseconds, nullptr);
}

KeptAttribute::KeptAttribute(
    SMCAttributes& driverCalls, std::string attributePath, SMCAttributes::Access attributeAccess)
    : calls(&driverCalls)
    , path(std::move(attributePath))
    , access(attributeAccess)
{
}

bool KeptAttribute::open()
{
    if (!descriptor)
        descriptor = calls->open(path, access);
    return static_cast<bool>(descriptor);
}

ssize_t KeptAttribute::read(std::span<char> bytes)
{
    return perform([&](int opened) { return calls->read(opened, bytes); });
}

ssize_t KeptAttribute::write(std::string_view text)
{
    return perform([&](int opened) { return calls->write(opened, text); });
}

bool KeptAttribute::lock()
{
    return open() && calls->lock(descriptor.get());
}

void KeptAttribute::unlock()
{
    if (descriptor)
        calls->unlock(descriptor.get());
}

// The descriptor of a driver that went away answers ENODEV for good, also after the driver came back.
template <typename Call> ssize_t KeptAttribute::perform(Call call)
{
    if (descriptor) {
        const auto result = call(descriptor.get());
        if (result >= 0 || errno != ENODEV)
            return result;
        descriptor.reset();
    }
    if (open())
        return call(descriptor.get());
    if (errno == ENOENT || errno == EACCES) // what comes back is readable at once, and writable a moment later
        errno = ENODEV;
    return -1;
}

} // namespace orv
