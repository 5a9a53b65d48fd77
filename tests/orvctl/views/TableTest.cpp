#include "orvctl/views/Table.h"

#include "readings/Text.h"
#include "json/JSONReader.h"

#include <gtest/gtest.h>

#include <sstream>

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
        EXPECT_LE(characterCount(line), 80u) << line;
        EXPECT_EQ(line.find('\x1b'), std::string::npos);
    }
}
