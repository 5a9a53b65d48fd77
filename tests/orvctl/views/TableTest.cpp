#include "orvctl/views/Table.h"

#include "orvctl/views/ColumnWidth.h"
#include "orvctl/views/NaturalOrder.h"
#include "tests/support/ParsedDictionary.h"

#include <gtest/gtest.h>

#include <sstream>
#include <utility>
#include <vector>

using namespace orv;

TEST(ThermalTable, GroupsBySensorInNaturalOrderAndNamesTheHottest)
{
    const auto given = dictionary(R"({
        "F1Ac": {"title": "Fan 10", "type": "fans", "unit": "rpm", "value": 0, "minvalue": 0, "maxvalue": 6500},
        "F0Ac": {"title": "Fan 2", "type": "fans", "unit": "rpm", "value": 2000, "minvalue": 1200, "maxvalue": 6500},
        "TC0P": {"title": "Core Performance 10", "type": "temperature", "unit": "celcius", "value": 47.55},
        "TC1P": {"title": "Core Performance 2", "type": "temperature", "unit": "celcius", "value": 66.0},
        "TG1D": {"title": "GPU Diode", "type": "temperature", "unit": "celcius", "value": 51.0},
        "TG0D": {"title": "GPU Diode", "type": "temperature", "unit": "celcius", "value": 50.0},
        "TA0P": {"title": "Ambient 1", "type": "temperature", "unit": "celcius", "value": 21.0}})");
    EXPECT_EQ(thermalTable(given, Colour::off),
        "CPU: hottest Core Performance 2, 66.0 °C\n"
        "  Core Performance 2                TC1P        66.0 °C\n"
        "  Core Performance 10               TC0P        47.5 °C\n"
        "GPU: hottest GPU Diode TG1D, 51.0 °C\n"
        "  GPU Diode                         TG0D        50.0 °C\n"
        "  GPU Diode                         TG1D        51.0 °C\n"
        "Airflow and enclosure\n"
        "  Ambient 1                         TA0P        21.0 °C\n"
        "Fans\n"
        "  Fan 2                             F0Ac        2000 rpm  (1200 to 6500)\n"
        "  Fan 10                            F1Ac           0 rpm  (0 to 6500)\n");
    EXPECT_EQ(flatThermalTable(given, Colour::off),
        "Temperatures\n"
        "  Ambient 1                         TA0P        21.0 °C\n"
        "  Core Performance 10               TC0P        47.5 °C\n"
        "  Core Performance 2                TC1P        66.0 °C\n"
        "  GPU Diode                         TG0D        50.0 °C\n"
        "  GPU Diode                         TG1D        51.0 °C\n"
        "Fans\n"
        "  Fan 10                            F1Ac           0 rpm  (0 to 6500)\n"
        "  Fan 2                             F0Ac        2000 rpm  (1200 to 6500)\n");
    for (const auto table : {thermalTable, flatThermalTable})
        EXPECT_EQ(table({}, Colour::off), "No temperatures and no fans.\n");
}

TEST(NaturalOrder, TakesDigitsForNumbersOfAnyLength)
{
    const std::vector<std::string> ordered{"", "10", "Core", "Core 0", "Core 02", "Core 2", "Core 2 b", "Core 10",
        "Core 99999999999999999999", "Core 100000000000000000000", "Core x", "Cores"};
    for (std::size_t left = 0; left < ordered.size(); ++left) {
        for (std::size_t right = 0; right < ordered.size(); ++right)
            EXPECT_EQ(comesNaturallyBefore(ordered[left], ordered[right]), left < right)
                << ordered[left] << " and " << ordered[right];
    }
}

TEST(BluetoothTable, ShowsLevelsAndWhateverElseThereIs)
{
    const auto table =
        bluetoothTable(dictionary(R"({"watch-1": {"name": "Watch", "batteryLevel": 80, "more": [1.0, {"b": true}]},
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
    const auto tables =
        bluetoothTable(dictionary(R"({")" + longText + R"(": {")" + longText + R"(": ")" + longText + R"("},
        "a\u001b[2J": {"b\n": "c\u009b"}, "ä": {"batteryLevelLeft": -9223372036854775808,
        "batteryLevelRight": -9223372036854775808, "batteryLevelCase": 1}})"),
            Colour::off)
        + thermalTable(
            dictionary(R"({"F0Ac": {"title": ")" + longText + R"(", "type": "fans", "value": 9223372036854775807,
        "minvalue": 9223372036854775807, "maxvalue": 1}, "T": {"title": "x", "type": "temperature", "value": 1e300},
        "U": {"title": ")"
                + longText + R"(", "type": "temperature", "value": 1e301}})"),
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
        const auto table = bluetoothTable(dictionary("{\"" + device + R"(": {"batteryLevel": 7}})"), Colour::off);
        EXPECT_NE(table.find("  " + device + std::string(37, ' ') + "7 %"), std::string::npos) << table;
    }
    std::string wide = "x"; // so that one of them would begin in the last column and end behind it
    for (int count = 0; count < 60; ++count)
        wide += "\u6e29";
    std::istringstream lines(
        bluetoothTable(dictionary("{\"" + wide + "\": {\"" + wide + R"(": ")" + wide + "\"}}"), Colour::off)
        + thermalTable(
            dictionary(R"({"T": {"title": ")" + wide + R"(", "type": "temperature", "value": 40.0}})"), Colour::off));
    for (std::string line; std::getline(lines, line);)
        EXPECT_LE(columnCount(line), 80u) << line;
}
