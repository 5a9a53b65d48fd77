#include "orvctl/views/Table.h"

#include "orvctl/views/ColumnWidth.h"
#include "json/JSONReader.h"

#include <gtest/gtest.h>

#include <sstream>
#include <utility>
#include <vector>

using namespace orv;

namespace {

Dictionary reply(const std::string& text)
{
    std::string fault;
    return *parseStrictJSON(text, fault)->as<Dictionary>();
}

} // namespace

TEST(ThermalTable, IsSortedByKindAndTitleWithUnits)
{
    const auto table = thermalTable(reply(R"({
        "F0Ac": {"title": "Left Side", "type": "fans", "unit": "rpm", "value": 2000, "minvalue": 1200, "maxvalue": 6500},
        "TC0P": {"title": "CPU Proximity", "type": "temperature", "unit": "celcius", "value": 47.55},
        "TA0P": {"title": "Ambient 1", "type": "temperature", "unit": "celcius", "value": 21.0}})"),
        Colour::off);
    EXPECT_EQ(table,
        "Temperatures\n"
        "  Ambient 1                         TA0P        21.0 °C\n"
        "  CPU Proximity                     TC0P        47.5 °C\n"
        "Fans\n"
        "  Left Side                         F0Ac        2000 rpm  (1200 to 6500)\n");
    EXPECT_EQ(thermalTable({}, Colour::off), "No temperatures and no fans.\n");
}

TEST(BluetoothTable, ShowsLevelsAndWhateverElseThereIs)
{
    const auto table =
        bluetoothTable(reply(R"({"watch-1": {"name": "Watch", "batteryLevel": 80, "more": [1.0, {"b": true}]},
        "aa-bb": {"batteryLevelLeft": 90, "batteryLevel": 7}})"),
            Colour::off);
    EXPECT_EQ(table,
        "Devices                                   Left     Right      Case      Main\n"
        "  aa-bb                                   90 %                           7 %\n"
        "Other entries\n"
        "  watch-1\n"
        "    name                            Watch\n"
        "    batteryLevel                    80\n"
        "    more                            [1.0, {\"b\": true}]\n");
}

TEST(Tables, FitInEightyColumnsAndMoveNoCursor)
{
    const std::string longText(200, 'x');
    const auto tables = bluetoothTable(reply(R"({")" + longText + R"(": {")" + longText + R"(": ")" + longText + R"("},
        "a\u001b[2J": {"b\n": "c\u009b"}, "ä": {"batteryLevelLeft": -9223372036854775808,
        "batteryLevelRight": -9223372036854775808, "batteryLevelCase": 1}})"),
                            Colour::off)
        + thermalTable(reply(R"({"F0Ac": {"title": ")" + longText + R"(", "type": "fans", "value": 9223372036854775807,
        "minvalue": 9223372036854775807, "maxvalue": 1}, "T": {"title": "x", "type": "temperature", "value": 1e300}})"),
            Colour::off);
    std::istringstream lines(tables);
    for (std::string line; std::getline(lines, line);) {
        EXPECT_LE(columnCount(line), 80u) << line;
        EXPECT_EQ(line.find('\x1b'), std::string::npos);
    }
}

TEST(Tables, CountColumnsAsATerminalDoes)
{
    for (const auto& [text, columns] : std::vector<std::pair<std::string, std::size_t>>{{"e\u0301", 1}, {"\u00e9", 1},
             {"\u6e29\u5ea6", 4}, {"\uff21", 2}, {"\U0001f5a5", 1}, {"\U0001f600", 2}, {"\u0e01\u0e33", 2}}) {
        EXPECT_EQ(columnCount(text), columns) << text;
        const auto device = text + std::string(34 - columns, 'x');
        const auto table = bluetoothTable(reply("{\"" + device + R"(": {"batteryLevel": 7}})"), Colour::off);
        EXPECT_NE(table.find("  " + device + std::string(37, ' ') + "7 %"), std::string::npos) << table;
    }
    std::string wide = "x"; // so that one of them would begin in the last column and end behind it
    for (int count = 0; count < 60; ++count)
        wide += "\u6e29";
    std::istringstream lines(
        bluetoothTable(reply("{\"" + wide + "\": {\"" + wide + R"(": ")" + wide + "\"}}"), Colour::off)
        + thermalTable(
            reply(R"({"T": {"title": ")" + wide + R"(", "type": "temperature", "value": 40.0}})"), Colour::off));
    for (std::string line; std::getline(lines, line);)
        EXPECT_LE(columnCount(line), 80u) << line;
}
