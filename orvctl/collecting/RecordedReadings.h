#pragma once

#include "service/Watching.h"

#include <string>

namespace orv {

/// Told what a recording holds, in its order.
class RecordedReadingsReader {
public:
    virtual ~RecordedReadingsReader() = default;

    /// First: how the machine is called, and for how many seconds it was recorded, which may be 0. A fault, in one
    /// line, when such a recording is of no use.
    virtual std::string opened(const std::string& machine, double length) = 0;
    /// Each refresh and each beginning of sleep, so many seconds after the beginning; false when nothing more is
    /// wanted.
    virtual bool heard(const WatchedReplies& replies, double at) = 0;
};

/// Plays a recording on the manual clock through the whole server, to its end and on to the refresh that shows it.
/// False when the file cannot be used or is of no use; `fault` then is one line.
bool readRecording(const std::string& path, RecordedReadingsReader& reader, std::string& fault);

} // namespace orv
