// The report reader against a second, plain walk over another parser's document: what it accepts and what it makes of
// it. Documents with equal keys in one object or nested past the depth limit are only read; those rules have tests.

#include "bluetooth/SystemProfilerReport.h"
#include "fuzz/support/Fuzzer.h"
#include "platform/JSON.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

using namespace orv;

namespace {

using Document = nlohmann::ordered_json;

/// Watches a document being parsed for what the second walk leaves out.
struct Peculiarities {
    bool found = false;
    std::vector<std::set<std::string>> open; // the keys of each open container

    bool operator()(int, Document::parse_event_t event, const Document& parsed)
    {
        using Event = Document::parse_event_t;
        if (event == Event::object_start || event == Event::array_start)
            open.emplace_back();
        found = found || open.size() > 512;
        if (event == Event::key)
            found = !open.back().insert(parsed.get<std::string>()).second || found;
        if (event == Event::object_end || event == Event::array_end)
            open.pop_back();
        return true;
    }
};

std::string withoutWhiteSpace(std::string text)
{
    static const std::vector<std::string> spaces{" ", "\t", "\n", "\v", "\f", "\r", "\u00A0", "\u2000", "\u2001",
        "\u2002", "\u2003", "\u2004", "\u2005", "\u2006", "\u2007", "\u2008", "\u2009", "\u200A", "\u200B", "\u3000"};
    const auto isFirst = [&](const auto& space) { return text.starts_with(space); };
    for (auto space = std::ranges::find_if(spaces, isFirst); space != spaces.end();
        space = std::ranges::find_if(spaces, isFirst))
        text.erase(0, space->size());
    return text;
}

std::int64_t plainInteger(const std::string& property)
{
    auto text = withoutWhiteSpace(property);
    const bool isNegative = text.starts_with('-');
    if (isNegative || text.starts_with('+'))
        text.erase(0, 1);
    const __int128 limit = isNegative ? __int128{1} << 63 : (__int128{1} << 63) - 1;
    __int128 number = 0;
    for (const char digit : text) {
        if (digit < '0' || digit > '9')
            break;
        number = std::min(limit, number * 10 + (digit - '0'));
    }
    return static_cast<std::int64_t>(isNegative ? -number : number);
}

std::string plainKey(std::string address)
{
    for (auto& character : address)
        character = character == ':' ? '-' : character >= 'A' && character <= 'Z' ? char(character + 32) : character;
    return address;
}

void addDevice(BluetoothBatteryDictionary& result, const Document& element)
{
    if (element.empty() || !element.front().is_object())
        return;
    const auto& properties = element.front();
    if (!std::ranges::all_of(properties, [](const auto& each) { return each.is_string(); }))
        return;
    Dictionary levels;
    for (const std::string suffix : {"Main", "", "Case", "Left", "Right"}) {
        const auto property = properties.find("device_batteryLevel" + suffix);
        if (property != properties.end())
            levels.set("batteryLevel" + (suffix == "Main" ? "" : suffix), plainInteger(property->get<std::string>()));
    }
    if (!levels.empty() && properties.contains("device_address"))
        result[plainKey(properties["device_address"].get<std::string>())] = levels;
}

BluetoothBatteryDictionary plainWalk(const Document& report)
{
    BluetoothBatteryDictionary result;
    if (!report.is_object() || !report.contains("SPBluetoothDataType"))
        return result;
    const auto& types = report["SPBluetoothDataType"];
    if (!types.is_array() || types.empty() || !types[0].is_object() || !types[0].contains("device_connected"))
        return result;
    const auto& devices = types[0]["device_connected"];
    if (!devices.is_array() || !std::ranges::all_of(devices, [](const auto& each) { return each.is_object(); }))
        return result;
    for (const auto& element : devices)
        addDevice(result, element);
    return result;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto bytes = textOf(data, size);
    const auto levels = parseBluetoothReport(bytes);
    Peculiarities peculiarities;
    const auto report = Document::parse(bytes, std::ref(peculiarities), false);
    if (peculiarities.found)
        return 0;
    const bool isAccepted = !report.is_discarded() && report.is_structured();
    require(parseJSON(bytes).has_value() == isAccepted, "both readers accept the same texts");
    if (isAccepted)
        require(levels == plainWalk(report), "both walks find the same devices");
    else
        require(levels.empty(), "a text that is refused has no devices");
    return 0;
}
