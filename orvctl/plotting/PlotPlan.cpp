#include "orvctl/plotting/PlotPlan.h"

#include <fmt/core.h>

#include <algorithm>

namespace orv {

std::optional<TimeRange> rangeOf(
    const PlotPlan& plan, double length, std::optional<WallTime> beginning, std::string& fault)
{
    for (const auto& moment : {plan.from, plan.to}) {
        if (moment && std::holds_alternative<WallTime>(*moment) && !beginning) {
            fault = "knows no time of day: --from and --to are seconds since its beginning";
            return std::nullopt;
        }
    }
    const auto seconds = [&](const PlotMoment& moment) {
        if (const auto* time = std::get_if<WallTime>(&moment))
            return std::chrono::duration<double>(*time - *beginning).count();
        return std::get<double>(moment);
    };
    const TimeRange range{
        std::max(0.0, plan.from ? seconds(*plan.from) : 0), std::min(length, plan.to ? seconds(*plan.to) : length)};
    if (range.from >= length)
        fault = fmt::format("ends {} seconds after its beginning", length);
    else if (range.length() <= 0)
        fault = "there is no time from --from to --to";
    else
        return range;
    return std::nullopt;
}

} // namespace orv
