#pragma once

#include "orvctl/watching/Moment.h"

#include <optional>
#include <string>
#include <vector>

namespace orv {

/// Seconds since the beginning of what is plotted.
struct TimeRange {
    double from = 0;
    double to = 0;

    double length() const { return to - from; }
};

struct TimeMark {
    double at;
    std::string label;
};

struct TimeAxis {
    std::vector<TimeMark> marks;
    std::string caption; // what the labels leave out
};

/// At most so many marks, at round times of day when the beginning is known, in the zone of the environment; otherwise
/// at round times since the beginning.
TimeAxis timeAxis(TimeRange range, std::optional<WallTime> beginning, int mostMarks);

} // namespace orv
