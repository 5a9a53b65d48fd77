#pragma once

#include <array>
#include <string_view>

namespace orv {

struct LevelName {
    std::string_view key; // in a device's entry
    std::string_view heading;
    std::string_view part; // for programs; kept: it is a label in what others store
};

/// The battery levels that a device may have, in the order in which they are shown.
inline constexpr std::array<LevelName, 4> levelNames{{
    {"batteryLevelLeft", "Left", "left"},
    {"batteryLevelRight", "Right", "right"},
    {"batteryLevelCase", "Case", "case"},
    {"batteryLevel", "Main", "main"},
}};

} // namespace orv
