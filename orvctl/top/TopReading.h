#pragma once

#include "service/Watching.h"
#include "thermal/SensorGroup.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace orv {

enum class ReadingKind : std::uint8_t { temperature, fan, level };

struct TopGroup {
    std::string_view heading;
    ReadingKind kind;
};

inline constexpr std::size_t fansGroup = sensorGroups.size();
inline constexpr std::size_t bluetoothGroup = fansGroup + 1;
inline constexpr std::size_t watchGroup = fansGroup + 2;

/// The groups in the order in which they are shown: those of the sensors first.
inline constexpr auto topGroups = [] {
    std::array<TopGroup, watchGroup + 1> groups{};
    for (std::size_t index = 0; index < sensorGroups.size(); ++index)
        groups[index] = {sensorGroups[index].heading, ReadingKind::temperature};
    groups[fansGroup] = {"Fans", ReadingKind::fan};
    groups[bluetoothGroup] = {"Bluetooth", ReadingKind::level};
    groups[watchGroup] = {"Watch", ReadingKind::level};
    return groups;
}();

/// One number that is shown, with texts of one line.
struct TopReading {
    std::string identity; // no other has it, and it stays
    std::size_t group = 0; // of topGroups
    std::string title;
    std::string key; // empty where the title is the key
    std::string subject; // what explain is asked about
    double value = 0; // degrees Celsius, revolutions per minute or percent; never NaN
    double least = 0; // of what it can be, below `most` where that is known
    double most = 0;

    bool operator==(const TopReading&) const = default;
};

/// Everything of both replies that is a number.
std::vector<TopReading> topReadings(const WatchedReplies& replies);

} // namespace orv
