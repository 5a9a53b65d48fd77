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

// The list of connected devices; nothing and why when the report has none.
const Array* connectedDevices(const Value& report, ReportOutcome& outcome)
{
    outcome = ReportOutcome::notAnObject;
    if (!report.as<Dictionary>())
        return nullptr;
    outcome = ReportOutcome::noDataType;
    const auto* dataTypes = memberOf<Array>(&report, dataTypeMember);
    if (!dataTypes || dataTypes->empty())
        return nullptr;
    const auto* devices = memberOf<Array>(&dataTypes->front(), connectedMember);
    outcome = devices ? ReportOutcome::walked : ReportOutcome::noConnectedList;
    return devices;
}

// One element that is no dictionary spoils the whole list of connected devices.
std::optional<std::size_t> firstSpoiler(const Array& devices)
{
    const auto spoiler = std::ranges::find_if_not(devices, [](const Value& device) { return device.as<Dictionary>(); });
    if (spoiler == devices.end())
        return std::nullopt;
    return static_cast<std::size_t>(spoiler - devices.begin());
}

bool isText(const Member& member)
{
    return member.value.as<std::string>() != nullptr;
}

/// Walks the elements of the list one after the other.
class DeviceWalk {
public:
    explicit DeviceWalk(BluetoothReportObserver* given)
        : observer(given)
    {
    }

    BluetoothBatteryDictionary result;

    void visit(const Value& element)
    {
        DeviceDecision decision{.element = count++};
        std::string key;
        decision.outcome = take(*element.as<Dictionary>(), decision.member, key);
        decision.key = key;
        if (observer)
            observer->deviceDecided(decision);
    }

private:
    // An element's one member is named after the device and holds its properties, which are texts throughout.
    DeviceOutcome take(const Dictionary& device, std::string_view& member, std::string& key)
    {
        const auto* properties = device.empty() ? nullptr : device.begin()->value.as<Dictionary>();
        if (!properties)
            return DeviceOutcome::notADevice;
        if (const auto other = std::ranges::find_if_not(*properties, isText); other != properties->end()) {
            member = other->key;
            return DeviceOutcome::notText;
        }
        const auto* address = properties->findAs<std::string>(addressProperty);
        if (!address)
            return DeviceOutcome::noAddress;
        auto levels = batteryLevels(*properties);
        if (levels.empty())
            return DeviceOutcome::noLevel;
        key = deviceKey(*address);
        result.insert_or_assign(key, std::move(levels));
        return DeviceOutcome::shown;
    }

    BluetoothReportObserver* const observer;
    std::size_t count = 0;
};

void tellOfSpoiltList(const Array& devices, BluetoothReportObserver* observer)
{
    for (std::size_t element = 0; observer && element < devices.size(); ++element)
        observer->deviceDecided({.element = element, .outcome = DeviceOutcome::spoiltList});
}

bool isHexadecimal(char character)
{
    return (character >= '0' && character <= '9') || (character >= 'a' && character <= 'f')
        || (character >= 'A' && character <= 'F');
}

} // namespace

BluetoothBatteryDictionary parseBluetoothReport(std::string_view bytes, BluetoothReportObserver* observer)
{
    const auto report = parseJSON(bytes);
    if (report)
        return walkBluetoothReport(*report, observer);
    if (observer)
        observer->reportWalked(ReportOutcome::notJSON, nullptr, std::nullopt);
    return {};
}

BluetoothBatteryDictionary walkBluetoothReport(const Value& report, BluetoothReportObserver* observer)
{
    auto outcome = ReportOutcome::walked;
    const auto* devices = connectedDevices(report, outcome);
    const auto spoiler = devices ? firstSpoiler(*devices) : std::nullopt;
    if (observer)
        observer->reportWalked(outcome, devices, spoiler);
    DeviceWalk walk(observer);
    if (spoiler)
        tellOfSpoiltList(*devices, observer);
    else if (devices)
        std::ranges::for_each(*devices, [&walk](const Value& element) { walk.visit(element); });
    return std::move(walk.result);
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

bool isUsedProperty(std::string_view name)
{
    return name == addressProperty || std::ranges::find(levelRules, name, &LevelRule::property) != levelRules.end();
}

Dictionary batteryLevels(const Dictionary& properties)
{
    Dictionary levels;
    for (const auto& [property, level] : levelRules) {
        if (const auto* text = properties.findAs<std::string>(property))
            levels.set(level, integerValue(*text));
    }
    return levels;
}

bool isDeviceAddress(std::string_view text)
{
    constexpr std::size_t length = 17;
    if (text.size() != length)
        return false;
    for (std::size_t place = 0; place < length; ++place) {
        const bool separates = place % 3 == 2;
        if (separates ? text[place] != ':' && text[place] != '-' : !isHexadecimal(text[place]))
            return false;
    }
    return true;
}

} // namespace orv
