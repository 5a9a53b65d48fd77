#include "orvctl/checking/PerformanceData.h"

#include <fmt/core.h>

#include <cmath>

namespace orv {

namespace {

std::string label(const std::string& key)
{
    std::string quoted = "'";
    for (const char character : key) {
        const bool isPlain =
            character > ' ' && character < 0x7f && character != '\'' && character != '=' && character != '|';
        quoted += isPlain ? character : '_';
    }
    return quoted + '\'';
}

std::string lowestLimit(const Measurement& measurement, const std::vector<Limit>& limits, PluginState state)
{
    const Limit* lowest = nullptr;
    for (const auto& limit : limits) {
        if (limit.state == state && isMeant(limit, measurement) && (!lowest || limit.above < lowest->above))
            lowest = &limit;
    }
    return lowest ? fmt::format("{}", lowest->above) : std::string();
}

std::string item(const Measurement& measurement, const std::vector<Limit>& limits)
{
    auto result = fmt::format("{}={};{};{}", label(measurement.key), measurement.value,
        lowestLimit(measurement, limits, PluginState::warning),
        lowestLimit(measurement, limits, PluginState::critical));
    if (measurement.kind == MeasurementKind::fan)
        result += fmt::format(";{};{}", measurement.lowest, measurement.highest);
    result.erase(result.find_last_not_of(';') + 1);
    return result;
}

} // namespace

// An infinite reading has no form there.
std::string performanceData(const Measurements& measurements, const std::vector<Limit>& limits)
{
    std::string data;
    for (const auto& measurement : measurements) {
        if (std::isfinite(measurement.value))
            data += (data.empty() ? "" : " ") + item(measurement, limits);
    }
    return data;
}

} // namespace orv
