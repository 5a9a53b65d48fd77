#pragma once

#include "base/FileDescriptor.h"
#include "base/ReplacedFile.h"

#include <optional>
#include <string>
#include <string_view>

namespace orv {

/// How a recording is put where it belongs.
enum class WritingMode {
    atOnce, // whole or not at all: written beside its place and moved there
    lineByLine,
    toStandardOutput,
};

/// The file of a recording. What was written stays whole whatever happens: of a text that found no room nothing is
/// left.
class RecordingOutput {
public:
    RecordingOutput(std::string path, WritingMode mode, bool replaces);

    /// Creates the file. False when that cannot be; `isInTheWay` tells why.
    bool open();
    /// Appends at once; after a fault does nothing.
    void write(std::string_view text);
    /// Moves a file that is written at once to its place.
    void finish();
    /// False, and a fault, when nobody reads standard output any more.
    bool isRead();

    /// One line, once something failed.
    const std::string& fault() const { return firstFault; }
    /// Whether the fault is a file that stands there already.
    bool isInTheWay() const { return fileIsInTheWay; }
    const std::string& path() const { return place; }

private:
    bool fail();

    const std::string place;
    const WritingMode mode;
    const bool replaces;
    std::optional<ReplacedFile> beside; // when it is written beside its place
    FileDescriptor file; // otherwise
    off_t size = 0; // of whole texts
    std::string firstFault;
    bool fileIsInTheWay = false;
};

} // namespace orv
