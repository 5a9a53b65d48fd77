#pragma once

#include "readings/Value.h"

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <variant>

namespace orv {

/// One temperature sensor, in degrees Celsius, unrounded.
struct TemperatureEntry {
    std::string title;
    double value = 0;

    bool operator==(const TemperatureEntry&) const = default;
};

/// One fan; speeds in revolutions per minute, rounded.
struct FanEntry {
    std::string title;
    std::int64_t value = 0;
    std::int64_t minvalue = 0;
    std::int64_t maxvalue = 0;

    bool operator==(const FanEntry&) const = default;
};

/// Sensor code (an SMC key, a HID sensor code or a fan's actual-speed key) to its reading.
using ThermalDictionary = std::map<std::string, std::variant<TemperatureEntry, FanEntry>>;

/// Device key (a Bluetooth address written aa-bb-cc-dd-ee-ff, or a watch file's key) to its levels.
using BluetoothBatteryDictionary = std::map<std::string, Dictionary>;

/// Every entry of both; where both hold a key the entry of `second` is kept whole.
template <typename Readings> Readings mergeReadings(Readings first, Readings second)
{
    second.merge(first);
    return second;
}

} // namespace orv
