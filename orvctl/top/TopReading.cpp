#include "orvctl/top/TopReading.h"

#include "orvctl/views/LevelNames.h"
#include "orvctl/views/Printable.h"
#include "orvctl/watching/Figures.h"

#include <algorithm>
#include <map>

namespace orv {

namespace {

struct Device {
    std::string name; // empty for one without
    bool isWatch = false;
};

bool isLevel(const Member& member)
{
    return std::ranges::find(levelNames, member.key, &LevelName::key) != levelNames.end();
}

// A device has levels alone; what a watch's companion wrote may have more.
std::map<std::string, Device> devicesOf(const Dictionary& bluetooth)
{
    std::map<std::string, Device> devices;
    for (const auto& [key, value] : bluetooth) {
        const auto* entry = value.as<Dictionary>();
        if (!entry)
            continue;
        const auto* name = entry->findAs<std::string>("name");
        devices[printable(key)] = {name ? printable(*name) : "", !std::ranges::all_of(*entry, isLevel)};
    }
    return devices;
}

TopReading levelReading(const Figure& figure, const Device& device)
{
    const auto& name = device.name.empty() ? figure.key : device.name;
    const bool isMain = figure.title == "Main";
    return {figure.key + '\n' + figure.title, device.isWatch ? watchGroup : bluetoothGroup,
        isMain ? name : name + ' ' + figure.title, device.name.empty() ? "" : figure.key, figure.key, figure.value, 0,
        100};
}

TopReading thermalReading(const Figure& figure)
{
    const auto group = figure.unit == "rpm" ? fansGroup : static_cast<std::size_t>(groupOf(figure.title));
    return {figure.key, group, figure.title, figure.key, figure.key, figure.value, figure.least, figure.most};
}

} // namespace

std::vector<TopReading> topReadings(const WatchedReplies& replies)
{
    const auto devices = devicesOf(replies.bluetooth);
    std::vector<TopReading> readings;
    for (const auto& figure : allFigures(replies.thermal, replies.bluetooth))
        readings.push_back(
            figure.unit == "percent" ? levelReading(figure, devices.at(figure.key)) : thermalReading(figure));
    return readings;
}

} // namespace orv
