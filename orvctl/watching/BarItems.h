#pragma once

#include "orvctl/watching/Moment.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace orv {

/// One thing that a status bar shows.
struct BarItem {
    std::string key; // of the sensor, the fan or the device
    std::string name; // for people
    std::string number; // "45 °C", "1200 rpm", "80 %"
    std::string widest; // about the longest that the number gets
    bool isNamed = false; // in the bar itself
};

/// The chosen figures; without a choice the hottest sensor, the fastest fan and the lowest battery.
std::vector<BarItem> barItems(const Moment& moment);

/// What an item's place in the bar shows, the name included when it is shown.
std::string barText(const BarItem& item, const std::string& number);

/// What follows the text when the moment is not fresh: " (20 s old)".
std::string barAge(const Moment& moment);

/// The lowest battery level that is a percentage.
std::optional<std::int64_t> lowestBattery(const Moment& moment);

} // namespace orv
