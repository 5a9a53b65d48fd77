#include "bluetooth/SystemProfilerReport.h"

#include "bluetooth/IntegerValue.h"
#include "platform/JSON.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>

namespace orv {

namespace {

struct LevelRule {
    std::string_view property;
    const char* level;
};

// In the order of storing: where a report carries both of the first two, the plain one wins.
constexpr std::array<LevelRule, 5> levelRules{{
    {"device_batteryLevelMain", "batteryLevel"},
    {"device_batteryLevel", "batteryLevel"},
    {"device_batteryLevelCase", "batteryLevelCase"},
    {"device_batteryLevelLeft", "batteryLevelLeft"},
    {"device_batteryLevelRight", "batteryLevelRight"},
}};

template <typename T> const T* memberOf(const Value* parent, std::string_view key)
{
    const auto* dictionary = parent ? parent->as<Dictionary>() : nullptr;
    return dictionary ? dictionary->findAs<T>(key) : nullptr;
}

// One element that is no dictionary spoils the whole list of connected devices.
const Array* connectedDevices(const Value& report)
{
    const auto* dataTypes = memberOf<Array>(&report, "SPBluetoothDataType");
    if (!dataTypes || dataTypes->empty())
        return nullptr;
    const auto* devices = memberOf<Array>(&dataTypes->front(), "device_connected");
    if (!devices || !std::ranges::all_of(*devices, [](const Value& device) { return device.as<Dictionary>(); }))
        return nullptr;
    return devices;
}

// An element's one member is named after the device and holds its properties, which are texts throughout.
const Dictionary* deviceProperties(const Value& element)
{
    const auto& device = *element.as<Dictionary>();
    const auto* properties = device.empty() ? nullptr : device.begin()->value.as<Dictionary>();
    const auto isText = [](const Member& member) { return member.value.as<std::string>() != nullptr; };
    return properties && std::ranges::all_of(*properties, isText) ? properties : nullptr;
}

Dictionary batteryLevels(const Dictionary& properties)
{
    Dictionary levels;
    for (const auto& [property, level] : levelRules) {
        if (const auto* text = properties.find(property))
            levels.set(level, integerValue(*text->as<std::string>()));
    }
    return levels;
}

// Addresses are ASCII, so only ASCII letters are lowered.
std::string deviceKey(std::string address)
{
    for (auto& character : address) {
        if (character >= 'A' && character <= 'Z')
            character = static_cast<char>(character - 'A' + 'a');
        if (character == ':')
            character = '-';
    }
    return address;
}

} // namespace

BluetoothBatteryDictionary parseBluetoothReport(std::string_view bytes)
{
    BluetoothBatteryDictionary result;
    const auto report = parseJSON(bytes);
    const auto* devices = report ? connectedDevices(*report) : nullptr;
    if (!devices)
        return result;
    for (const auto& element : *devices) {
        const auto* properties = deviceProperties(element);
        const auto* address = properties ? properties->find("device_address") : nullptr;
        if (!address)
            continue;
        auto levels = batteryLevels(*properties);
        if (!levels.empty())
            result.insert_or_assign(deviceKey(*address->as<std::string>()), std::move(levels));
    }
    return result;
}

} // namespace orv
