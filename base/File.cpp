#include "base/File.h"

#include "base/RegularFile.h"

#include <algorithm>
#include <cerrno>
#include <sys/stat.h>

namespace orv {

namespace {

constexpr std::size_t smallestRead = 4096;

} // namespace

std::optional<std::string> readFile(const std::string& path, std::size_t limit)
{
    const auto file = openRegularFile(path);
    struct stat status{};
    if (!file || ::fstat(file.get(), &status) != 0)
        return std::nullopt;
    std::string content;
    const auto announced = static_cast<std::size_t>(status.st_size);
    if (announced > limit) {
        errno = EFBIG;
        return std::nullopt;
    }
    for (;;) {
        if (content.size() > limit) {
            errno = EFBIG;
            return std::nullopt;
        }
        // One byte more than announced lets the end be seen without another allocation. A file of the kernel's own
        // announces nothing and is mostly small.
        const auto filled = content.size();
        content.resize(filled + (filled < announced ? announced - filled + 1 : std::max(filled, smallestRead)));
        const auto count = ::read(file.get(), content.data() + filled, content.size() - filled);
        content.resize(filled + static_cast<std::size_t>(count < 0 ? 0 : count));
        if (count == 0)
            return content;
        if (count < 0 && errno != EINTR)
            return std::nullopt;
    }
}

std::string_view firstLine(std::string_view text)
{
    return text.substr(0, text.find_first_of(std::string_view("\n\0", 2)));
}

std::string firstLineOfFile(const std::string& path, std::size_t limit)
{
    return std::string(firstLine(readFile(path, limit).value_or("")));
}

} // namespace orv
