#pragma once

#include "readings/Value.h"

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

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

/// Sensor code (an SMC key, a HID sensor code or a fan's actual-speed key) to its reading. Of a std::map it has what is
/// needed, in one block of memory: a refresh adds its few dozen readings in order, and frees those of the last one,
/// for which a std::map takes half as many instructions again.
class ThermalDictionary {
public:
    using Reading = std::variant<TemperatureEntry, FanEntry>;
    using Entry = std::pair<std::string, Reading>;

    ThermalDictionary() = default;
    ThermalDictionary(std::initializer_list<Entry> listed);

    void reserve(std::size_t count) { entries.reserve(count); }
    /// Stores a reading or an entry, replacing an earlier one of the same code. Quick for a code behind all others.
    template <typename Stored> void insert_or_assign(std::string&& code, Stored&& reading)
    {
        if (entries.empty() || entries.back().first < code)
            entries.emplace_back(std::move(code), std::forward<Stored>(reading));
        else
            among(std::move(code)) = std::forward<Stored>(reading);
    }
    /// Takes the readings of the codes that this one lacks.
    void merge(ThermalDictionary& other);

    bool empty() const { return entries.empty(); }
    std::size_t size() const { return entries.size(); }
    std::vector<Entry>::const_iterator begin() const { return entries.begin(); }
    std::vector<Entry>::const_iterator end() const { return entries.end(); }

    bool operator==(const ThermalDictionary&) const = default;

private:
    Reading& among(std::string&& code);

    std::vector<Entry> entries; // in ascending order of the codes' bytes, each code once
};

/// Device key (a Bluetooth address written aa-bb-cc-dd-ee-ff, or a watch file's key) to its levels.
using BluetoothBatteryDictionary = std::map<std::string, Dictionary>;

/// Every entry of both; where both hold a key the entry of `second` is kept whole.
template <typename Readings> Readings mergeReadings(Readings first, Readings second)
{
    second.merge(first);
    return second;
}

} // namespace orv
