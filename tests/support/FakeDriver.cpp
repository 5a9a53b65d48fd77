#include "tests/support/FakeDriver.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <utility>

namespace orv {

namespace {

ssize_t failed(int error)
{
    errno = error;
    return -1;
}

bool isIndexed(const std::string& path)
{
    return path.find("/key_at_index") != std::string::npos;
}

} // namespace

void FakeDriver::addApplesmc(const std::string& folder, std::vector<Key> driverKeys)
{
    keys = std::move(driverKeys);
    files[folder + "/key_count"] = std::to_string(keys.size()) + '\n';
    for (const char* suffix : {"", "_name", "_type", "_data_length", "_data"})
        files[folder + "/key_at_index" + suffix] = "";
}

void FakeDriver::unload()
{
    isLoaded = false;
    ++generation;
}

std::size_t FakeDriver::openDescriptors() const
{
    const auto isOpen = [](const auto& entry) { return fcntl(entry.first, F_GETFD) >= 0; };
    return static_cast<std::size_t>(std::ranges::count_if(opened, isOpen));
}

FileDescriptor FakeDriver::open(const std::string& path, Access access)
{
    if (!isLoaded || !files.contains(path)) {
        errno = ENOENT;
        return FileDescriptor();
    }
    if (access == Access::readingAndWriting && !isWritable) {
        errno = EACCES;
        return FileDescriptor();
    }
    FileDescriptor descriptor(::open("/dev/null", O_RDWR | O_CLOEXEC));
    opened[descriptor.get()] = {path, generation};
    ++opens;
    return descriptor;
}

bool FakeDriver::exists(const std::string& path)
{
    looks.push_back(path);
    const auto next = files.lower_bound(path);
    return isLoaded && next != files.end() && (next->first == path || next->first.starts_with(path + '/'));
}

bool FakeDriver::lock(int descriptor)
{
    announce(Call::lock);
    if (lockHolder && *lockHolder != descriptor) {
        errno = EWOULDBLOCK;
        return false;
    }
    lockHolder = descriptor;
    return true;
}

void FakeDriver::unlock(int descriptor)
{
    announce(Call::unlock);
    if (lockHolder == descriptor)
        lockHolder.reset();
}

void FakeDriver::pause()
{
    announce(Call::pause);
}

ssize_t FakeDriver::read(int descriptor, std::span<char> bytes)
{
    const auto file = opened.at(descriptor);
    announce(file.path.ends_with("/key_at_index") ? Call::readIndex : Call::read);
    if (file.generation != generation)
        return failed(ENODEV);
    if (file.path.ends_with("/key_at_index_data") && !keys.empty()) {
        dataReads.push_back(keys[index].name);
        if (keys[index].isUnreadable)
            return failed(EIO);
    }
    if (const auto refusal = refusals.find(file.path); refusal != refusals.end())
        return failed(refusal->second);
    const auto text = content(file.path);
    const auto count = std::min(text.size(), bytes.size());
    std::copy_n(text.begin(), count, bytes.begin());
    return static_cast<ssize_t>(count);
}

ssize_t FakeDriver::write(int descriptor, std::string_view text)
{
    announce(Call::write);
    if (opened.at(descriptor).generation != generation)
        return failed(ENODEV);
    if (keys.empty()) {
        files[opened.at(descriptor).path] = text;
        return static_cast<ssize_t>(text.size());
    }
    const auto number = std::stoul(std::string(text));
    if (number >= keys.size())
        return failed(EINVAL);
    index = number;
    if (afterWrite)
        afterWrite();
    return static_cast<ssize_t>(text.size());
}

void FakeDriver::announce(Call call) const
{
    if (beforeCall)
        beforeCall(call);
}

std::string FakeDriver::content(const std::string& path)
{
    if (!isIndexed(path) || keys.empty())
        return files[path];
    const auto& key = keys[index];
    if (path.ends_with("_name"))
        return key.name + '\n';
    if (path.ends_with("_type"))
        return key.type + '\n';
    if (path.ends_with("_data_length"))
        return std::to_string(key.bytes.size()) + '\n';
    return path.ends_with("_data") ? key.bytes : std::to_string(index) + '\n';
}

} // namespace orv
