#include "orvctl/top/History.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace orv {

namespace {

constexpr float nothing = std::numeric_limits<float>::quiet_NaN();

void openColumn(ReadingHistory& series, std::int64_t column)
{
    if (series.columns.empty() || column - series.newest >= static_cast<std::int64_t>(History::mostColumns)) {
        series.columns.assign(1, nothing);
        series.newest = column;
    }
    for (; series.newest < column; ++series.newest)
        series.columns.push_back(nothing);
    while (series.columns.size() > History::mostColumns)
        series.columns.pop_front();
}

void add(ReadingHistory& series, double value)
{
    auto& column = series.columns.back();
    column = std::isnan(column) ? static_cast<float>(value) : std::max(column, static_cast<float>(value));
    if (!std::isfinite(value))
        return;
    series.lowest = series.hasFinite ? std::min(series.lowest, value) : value;
    series.highest = series.hasFinite ? std::max(series.highest, value) : value;
    series.hasFinite = true;
}

} // namespace

void History::take(const std::vector<TopReading>& readings, Seconds measuredAt)
{
    const auto column = static_cast<std::int64_t>(std::floor(measuredAt / columnTime));
    newest = hasBegun ? std::max(newest, column) : column;
    hasBegun = true;
    for (const auto& reading : readings) {
        auto& seen = series[reading.identity];
        openColumn(seen, newest);
        add(seen, reading.value);
    }
}

const ReadingHistory* History::find(const std::string& identity) const
{
    const auto found = series.find(identity);
    return found == series.end() ? nullptr : &found->second;
}

std::vector<float> History::columns(const std::string& identity, std::size_t count) const
{
    std::vector<float> result(count, nothing);
    const auto* seen = find(identity);
    if (!seen)
        return result;
    for (std::size_t back = 0; back < count; ++back) {
        const auto place = static_cast<std::int64_t>(seen->columns.size()) - 1
            - (static_cast<std::int64_t>(back) - (newest - seen->newest));
        if (place >= 0 && place < static_cast<std::int64_t>(seen->columns.size()))
            result[count - 1 - back] = seen->columns[static_cast<std::size_t>(place)];
    }
    return result;
}

} // namespace orv
