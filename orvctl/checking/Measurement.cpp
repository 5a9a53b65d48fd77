#include "orvctl/checking/Measurement.h"

#include "thermal/SensorGroup.h"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>

namespace orv {

namespace {

std::string_view text(const Dictionary& entry, std::string_view member)
{
    const auto* found = entry.findAs<std::string>(member);
    return found ? std::string_view(*found) : std::string_view();
}

double integer(const Dictionary& entry, std::string_view member)
{
    const auto* found = entry.findAs<std::int64_t>(member);
    return found ? static_cast<double>(*found) : 0;
}

/// Nothing is added of an entry that is neither.
void addMeasurement(Measurements& measurements, const std::string& key, const Dictionary& entry)
{
    const std::string title(text(entry, "title"));
    const auto* degrees = entry.findAs<double>("value");
    if (text(entry, "type") == "fans")
        measurements.push_back({key, title, MeasurementKind::fan, integer(entry, "value"), integer(entry, "minvalue"),
            integer(entry, "maxvalue")});
    else if (degrees)
        measurements.push_back({key, title, MeasurementKind::temperature, *degrees});
}

} // namespace

Measurements measurementsOf(const Dictionary& thermal)
{
    Measurements measurements;
    for (const auto& [key, value] : thermal) {
        if (const auto* entry = value.as<Dictionary>())
            addMeasurement(measurements, key, *entry);
    }
    std::ranges::sort(measurements, {}, &Measurement::key);
    return measurements;
}

bool isMeant(const Limit& limit, const Measurement& measurement)
{
    return limit.what == measurement.key || limit.what == measurement.title
        || (measurement.kind == MeasurementKind::temperature && limit.what == identifierOf(groupOf(measurement.title)));
}

std::string withUnit(const Measurement& measurement)
{
    return measurement.kind == MeasurementKind::fan ? fmt::format("{} rpm", measurement.value)
                                                    : fmt::format("{:.1f} °C", measurement.value);
}

} // namespace orv
