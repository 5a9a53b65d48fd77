#include "orvctl/checking/Measurement.h"

#include "orvctl/views/EntryMember.h"
#include "thermal/SensorGroup.h"

#include <fmt/core.h>

#include <algorithm>

namespace orv {

namespace {

/// Nothing is added of an entry that is neither.
void addMeasurement(Measurements& measurements, const std::string& key, const Dictionary& entry)
{
    const std::string title(textMember(entry, "title"));
    const auto* degrees = entry.findAs<double>("value");
    if (textMember(entry, "type") == "fans")
        measurements.push_back({key, title, MeasurementKind::fan, speed(entry, "value"), speed(entry, "minvalue"),
            speed(entry, "maxvalue")});
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
