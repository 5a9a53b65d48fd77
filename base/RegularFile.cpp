#include "base/RegularFile.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>

namespace orv {

// Opened without blocking: a FIFO in the file's place must not stop the caller.
FileDescriptor openRegularFile(const std::string& path)
{
    FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status{};
    if (!file || ::fstat(file.get(), &status) != 0)
        return {};
    if (S_ISREG(status.st_mode))
        return file;
    file.reset();
    errno = S_ISDIR(status.st_mode) ? EISDIR : EINVAL;
    return {};
}

} // namespace orv
