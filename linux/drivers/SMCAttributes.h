#pragma once

#include "base/FileDescriptor.h"

#include <sys/types.h>

#include <span>
#include <string>
#include <string_view>

namespace orv {

/// The calls on the attribute files of a kernel driver. As the system's own, they leave the reason of a failure in
/// errno.
class SMCAttributes {
public:
    virtual ~SMCAttributes() = default;

    enum class Access { reading, readingAndWriting };
    virtual FileDescriptor open(const std::string& path, Access access) = 0;
    /// Whether there is a file or a folder.
    virtual bool exists(const std::string& path) = 0;
    /// Asks the driver afresh, from the start of the attribute.
    virtual ssize_t read(int descriptor, std::span<char> bytes) = 0;
    virtual ssize_t write(int descriptor, std::string_view text) = 0;

    /// Takes the advisory lock of what is open; does not wait. EWOULDBLOCK when another program has it.
    virtual bool lock(int descriptor) = 0;
    virtual void unlock(int descriptor) = 0;
    /// Lets other programs go on for some milliseconds.
    virtual void pause() = 0;
};

/// The attributes in sysfs.
class SysfsAttributes final : public SMCAttributes {
public:
    FileDescriptor open(const std::string& path, Access access) override;
    bool exists(const std::string& path) override;
    ssize_t read(int descriptor, std::span<char> bytes) override;
    ssize_t write(int descriptor, std::string_view text) override;
    bool lock(int descriptor) override;
    void unlock(int descriptor) override;
    void pause() override;
};

/// One attribute whose descriptor, once opened, stays open. It is opened again when its driver went away and came back.
class KeptAttribute {
public:
    KeptAttribute(SMCAttributes& driverCalls, std::string attributePath,
        SMCAttributes::Access attributeAccess = SMCAttributes::Access::reading);

    /// Whether it is open, now or already before.
    bool open();
    /// The number of bytes, or -1; then errno is ENODEV when its driver is not there.
    ssize_t read(std::span<char> bytes);
    ssize_t write(std::string_view text);
    /// Whether it is locked now, for this descriptor alone; a failure is that of SMCAttributes::lock.
    bool lock();
    void unlock();

private:
    template <typename Call> ssize_t perform(Call call);

    SMCAttributes* calls;
    std::string path;
    SMCAttributes::Access access;
    FileDescriptor descriptor;
};

} // namespace orv
