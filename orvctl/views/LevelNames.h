#pragma once

#include <array>
#include <string_view>

namespace orv {

struct LevelName {
    std::string_view key; // in a device's entry
    std::string_view heading;
};

/// The battery levels that a device may have, in the order in which they are shown.
inline constexpr std::array<LevelName, 4> levelNames{{
    {"batteryLevelLeft", "Left"},
    {"batteryLevelRight", "Right"},
    {"batteryLevelCase", "Case"},
    {"batteryLevel", "Main"},
}};

} // namespace orv
