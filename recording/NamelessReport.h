#pragma once

#include "readings/Value.h"
#include "recording/StandIns.h"

#include <string_view>

namespace orv {

/// A profiler's report in which only what its walk uses is left, under stand-ins: the walk gives the same devices and
/// levels, under stand-ins too. One that cannot be read is a text that cannot be read.
Value namelessReport(std::string_view bytes, StandIns& standIns);

/// A watch file whose keys and texts are stand-ins; its numbers, truths and shape stay. One that cannot be read is a
/// text that cannot be read.
Value namelessWatchFile(std::string_view bytes, StandIns& standIns);

} // namespace orv
