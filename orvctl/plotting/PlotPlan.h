#pragma once

#include "orvctl/plotting/TimeAxis.h"

#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace orv {

/// Seconds since the beginning, or a time of day.
using PlotMoment = std::variant<double, WallTime>;

/// What is asked of a plot.
struct PlotPlan {
    std::vector<std::string> chosen; // keys and titles; empty for everything
    std::optional<PlotMoment> from; // without: from the beginning
    std::optional<PlotMoment> to; // without: to the end
};

/// The part that is asked for of something so many seconds long, whose beginning may be known. Nothing when that is no
/// time at all; `fault` then says why.
std::optional<TimeRange> rangeOf(
    const PlotPlan& plan, double length, std::optional<WallTime> beginning, std::string& fault);

} // namespace orv
