#include "orvctl/views/Table.h"

#include "orvctl/views/EntryMember.h"
#include "orvctl/views/LevelNames.h"
#include "orvctl/views/NaturalOrder.h"
#include "orvctl/views/Printable.h"
#include "orvctl/views/Text.h"
#include "thermal/SensorGroup.h"
#include "json/JSONWriter.h"

#include <fmt/core.h>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <map>
#include <string_view>
#include <tuple>
#include <vector>

namespace orv {

namespace {

constexpr std::size_t titleWidth = 34;
constexpr std::size_t deviceWidth = 34;

/// One reading under its code, in the order in which a table shows it.
struct Reading {
    std::string title;
    std::string code;
    const Dictionary* entry;

    bool operator<(const Reading& other) const { return std::tie(title, code) < std::tie(other.title, other.code); }
};

bool naturally(const Reading& left, const Reading& right)
{
    return left.title == right.title ? left.code < right.code : comesNaturallyBefore(left.title, right.title);
}

std::vector<Reading> readingsOfType(const Dictionary& reply, std::string_view type)
{
    std::vector<Reading> readings;
    for (const auto& [code, value] : reply) {
        const auto* entry = value.as<Dictionary>();
        if (entry && textMember(*entry, "type") == type)
            readings.push_back({printable(textMember(*entry, "title")), printable(code), entry});
    }
    std::ranges::sort(readings, std::less<>());
    return readings;
}

double celsius(const Reading& reading)
{
    return numberMember<double>(*reading.entry, "value");
}

std::string temperatureRow(const Reading& reading)
{
    return row(
        fmt::format("  {}{}{:>8.1f} °C", padded(titleWidth, reading.title), padded(8, reading.code), celsius(reading)));
}

// Several sensors may have one title; then its key tells which.
std::string nameAmong(const std::vector<Reading>& readings, const Reading& reading)
{
    const bool isUnique = std::ranges::count(readings, reading.title, &Reading::title) == 1;
    return isUnique ? reading.title : reading.title + ' ' + reading.code;
}

std::string groupHeading(const SensorGroupRow& group, const std::vector<Reading>& readings)
{
    const auto hottest = std::ranges::max_element(readings, {}, celsius);
    auto text = std::string(group.heading);
    if (readings.size() > 1)
        text += fmt::format(": hottest {}, {:.1f} °C", nameAmong(readings, *hottest), celsius(*hottest));
    return cutTo(pageWidth, text);
}

std::string fanRow(const Reading& reading)
{
    const auto& fan = *reading.entry;
    return row(fmt::format("  {}{}{:>8} rpm  ({} to {})", padded(titleWidth, reading.title), padded(8, reading.code),
        numberMember<std::int64_t>(fan, "value"), numberMember<std::int64_t>(fan, "minvalue"),
        numberMember<std::int64_t>(fan, "maxvalue")));
}

constexpr const char* emptyThermalTable = "No temperatures and no fans.\n";

std::string rows(const std::string& title, const std::vector<Reading>& readings,
    std::string (*rowOf)(const Reading& reading), Colour colour)
{
    auto text = readings.empty() ? std::string() : heading(title, colour);
    for (const auto& reading : readings)
        text += rowOf(reading);
    return text;
}

std::string groupedTemperatures(const Dictionary& reply, Colour colour)
{
    std::map<SensorGroup, std::vector<Reading>> groups;
    for (const auto& reading : readingsOfType(reply, "temperature"))
        groups[groupOf(reading.title)].push_back(reading);
    std::string table;
    for (auto& [group, readings] : groups) {
        std::ranges::sort(readings, naturally);
        table += rows(groupHeading(rowOf(group), readings), readings, temperatureRow, colour);
    }
    return table;
}

bool isLevel(const Member& levelOrOther)
{
    return levelOrOther.value.as<std::int64_t>()
        && std::ranges::find(levelNames, levelOrOther.key, &LevelName::key) != levelNames.end();
}

std::string deviceRow(const Member& device)
{
    auto text = "  " + padded(deviceWidth, printable(device.key));
    for (const auto& column : levelNames) {
        const auto* level = device.value.as<Dictionary>()->find(column.key);
        text += level ? fmt::format("{:>8} %", *level->as<std::int64_t>()) : std::string(10, ' ');
    }
    return row(text.substr(0, text.find_last_not_of(' ') + 1));
}

std::string deviceHeading()
{
    auto text = padded(deviceWidth + 2, "Devices");
    for (const auto& column : levelNames)
        text += fmt::format("{:>10}", column.heading);
    return text;
}

std::string otherRow(const Member& entry)
{
    auto rows = row("  " + printable(entry.key));
    const auto* members = entry.value.as<Dictionary>();
    for (const auto& [key, value] : members ? *members : Dictionary()) {
        const auto* text = value.as<std::string>();
        const auto content = printable(text ? *text : writeJSON(value, KeyOrder::sorted));
        rows += row("    " + padded(titleWidth - 2, printable(key)) + content);
    }
    return rows;
}

std::vector<Member> sortedByKey(const Dictionary& reply)
{
    std::vector<Member> entries(reply.begin(), reply.end());
    std::ranges::sort(entries, {}, &Member::key);
    return entries;
}

} // namespace

std::string thermalTable(const Dictionary& reply, Colour colour)
{
    auto table = groupedTemperatures(reply, colour);
    auto fans = readingsOfType(reply, "fans");
    std::ranges::sort(fans, naturally);
    table += rows("Fans", fans, fanRow, colour);
    return table.empty() ? emptyThermalTable : table;
}

std::string flatThermalTable(const Dictionary& reply, Colour colour)
{
    auto table = rows("Temperatures", readingsOfType(reply, "temperature"), temperatureRow, colour)
        + rows("Fans", readingsOfType(reply, "fans"), fanRow, colour);
    return table.empty() ? emptyThermalTable : table;
}

std::string bluetoothTable(const Dictionary& reply, Colour colour)
{
    std::string devices;
    std::string others;
    for (const auto& entry : sortedByKey(reply)) {
        const auto* members = entry.value.as<Dictionary>();
        if (members && !members->empty() && std::ranges::all_of(*members, isLevel))
            devices += deviceRow(entry);
        else
            others += otherRow(entry);
    }
    std::string table;
    if (!devices.empty())
        table += heading(deviceHeading(), colour) + devices;
    if (!others.empty())
        table += heading("Other entries", colour) + others;
    return table.empty() ? "No battery levels.\n" : table;
}

} // namespace orv
