#pragma once

#include "base/FileDescriptor.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace orv {

/// Reads a file line by line, however long it is.
class LineReader {
public:
    explicit LineReader(FileDescriptor file);

    /// The next line without its newline, valid until the next call; nothing at the end, after a read error (errno),
    /// or for a line of more than `longest` bytes (EFBIG). errno is 0 at the end.
    std::optional<std::string_view> next(std::size_t longest);

    /// False for a last line that no newline ends.
    bool isLineEnded() const { return lineIsEnded; }
    /// Of the last line, counted from 1.
    std::size_t lineNumber() const { return lines; }

    /// A place between two lines, to which `goBack` returns. False when the file cannot be read again from there.
    struct Mark {
        off_t offset = 0;
        std::size_t lines = 0;
    };
    Mark mark() const { return {dropped + static_cast<off_t>(start), lines}; }
    bool goBack(Mark mark);

private:
    bool readMore();

    FileDescriptor file;
    std::string buffer; // what was read and not yet passed on begins at `start`
    std::size_t start = 0;
    off_t dropped = 0; // how much of the file came before the buffer
    std::size_t lines = 0;
    bool lineIsEnded = true;
    bool isAtEnd = false;
};

} // namespace orv
