#pragma once

#include "orvctl/checking/Limit.h"
#include "readings/Value.h"

#include <cstdint>
#include <string>
#include <vector>

namespace orv {

enum class MeasurementKind : std::uint8_t { temperature, fan };

/// One number that can be checked.
struct Measurement {
    std::string key;
    std::string title;
    MeasurementKind kind = MeasurementKind::temperature;
    double value = 0; // degrees Celsius, or revolutions per minute
    double lowest = 0, highest = 0; // of a fan
};
using Measurements = std::vector<Measurement>;

/// Those of a thermal reply, sorted by key.
Measurements measurementsOf(const Dictionary& thermal);

/// Whether a limit is one of this measurement: of its key, its title, or the group of its title.
bool isMeant(const Limit& limit, const Measurement& measurement);

/// For people: "45.3 °C", "1200 rpm".
std::string withUnit(const Measurement& measurement);

} // namespace orv
