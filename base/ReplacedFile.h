#pragma once

#include "base/FileDescriptor.h"

#include <sys/stat.h>

#include <string>
#include <string_view>

namespace orv {

/// A file that is written beside its place and then moved there. What stands there is whole at every moment, also with
/// several writers. All that fails leaves it as it is, and errno says why. What a writer that is killed leaves beside
/// it the next one removes.
class ReplacedFile {
public:
    explicit ReplacedFile(std::string place);
    /// Removes what was not moved.
    ~ReplacedFile();
    ReplacedFile(const ReplacedFile&) = delete;
    ReplacedFile& operator=(const ReplacedFile&) = delete;

    /// With exactly these permissions, whatever the umask is.
    bool open(mode_t permissions);
    bool write(std::string_view text);
    /// Once it is on the disk. A file that stands in the place is an error (EEXIST) unless it may be replaced.
    bool moveToPlace(bool replaces);

private:
    const std::string place;
    std::string beside; // while it is there
    FileDescriptor file;
};

/// Writes the whole of a descriptor's text, however many pieces that takes.
bool writeWhole(int descriptor, std::string_view text);

/// Replaces the content of a file, which all may then read. The file that a link names is replaced, the link stays; a
/// device or a pipe is written to. One line when that failed, otherwise an empty text.
std::string replaceFile(const std::string& path, std::string_view text);

} // namespace orv
