#include "base/LineReader.h"

#include <cerrno>
#include <utility>

namespace orv {

namespace {

constexpr std::size_t readSize = 256u << 10;

} // namespace

LineReader::LineReader(FileDescriptor opened)
    : file(std::move(opened))
{
}

std::optional<std::string_view> LineReader::next(std::size_t longest)
{
    for (std::size_t searched = start;;) {
        const auto end = buffer.find('\n', searched);
        if (end != std::string::npos && end - start <= longest) {
            const std::string_view line(buffer.data() + start, end - start);
            start = end + 1;
            ++lines;
            return line;
        }
        searched = buffer.size() - start; // where it will stand once the lines passed on are dropped
        if (searched > longest) {
            errno = EFBIG;
            return std::nullopt;
        }
        if (!isAtEnd && !readMore())
            return std::nullopt;
        if (!isAtEnd)
            continue;
        errno = 0;
        if (start == buffer.size())
            return std::nullopt;
        lineIsEnded = false;
        ++lines;
        return std::string_view(buffer).substr(std::exchange(start, buffer.size()));
    }
}

bool LineReader::goBack(Mark mark)
{
    buffer.clear();
    start = 0;
    dropped = mark.offset;
    lines = mark.lines;
    lineIsEnded = true;
    isAtEnd = false;
    return ::lseek(file.get(), mark.offset, SEEK_SET) == mark.offset;
}

// False after an error.
bool LineReader::readMore()
{
    dropped += static_cast<off_t>(start);
    buffer.erase(0, std::exchange(start, 0));
    const auto filled = buffer.size();
    buffer.resize(filled + readSize);
    ssize_t count = 0;
    do
        count = ::read(file.get(), buffer.data() + filled, readSize);
    while (count < 0 && errno == EINTR);
    buffer.resize(filled + static_cast<std::size_t>(count < 0 ? 0 : count));
    isAtEnd = count == 0;
    return count >= 0;
}

} // namespace orv
