#include "recording/NamelessReport.h"

#include "bluetooth/SystemProfilerReport.h"
#include "json/JSONWriter.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

using namespace orv;

namespace {

std::string written(const Value& value)
{
    const auto* text = value.as<std::string>();
    return text ? *text : writeJSON(value, KeyOrder::asListed, Spacing::none);
}

std::string listed(const std::string& devices)
{
    return R"({"SPBluetoothDataType":[{"device_connected":)" + devices + "}]}";
}

} // namespace

// What is left is what the walk looks at; what spoils a device, a list or a report still does.
TEST(NamelessReport, KeepsWhatItsWalkUsesAndNothingElse)
{
    const std::vector<std::pair<std::string, std::string>> cases{
        {"", "{"},
        {"{\"Jane\"", "{"},
        {"[\"Jane\"]", "[]"},
        {R"({"Jane": 1})", "{}"},
        {R"({"SPBluetoothDataType": "Jane"})", R"({"SPBluetoothDataType":false})"},
        {R"({"SPBluetoothDataType": [], "x": "Jane"})", R"({"SPBluetoothDataType":[]})"},
        {R"({"SPBluetoothDataType": ["Jane", 2]})", R"({"SPBluetoothDataType":[false]})"},
        {R"({"SPBluetoothDataType": [{"device_not_connected": [{"Jane": {}}]}, {"Jane": 1}]})",
            R"({"SPBluetoothDataType":[{}]})"},
        {listed(R"("Jane")"), listed("false")},
        {listed(R"([{}, "Jane", {"Jane": "Jane"}])"), listed(R"([{},false,{"Device 1":false}])")},
        {listed(
             R"([{"Jane": {"device_address": "AA:bb", "device_batteryLevel": " 85 %", "device_serial": "Jane"}, "x": 1}])"),
            listed(R"([{"Device 1":{"device_address":"00:00:00:00:00:01","device_batteryLevel":"85"}}])")},
        {listed(R"([{"a": {"Jane": 5, "device_batteryLevelLeft": ["Jane"]}}, {"b": {"device_address": "aa-BB"}}])"),
            listed(
                R"([{"Device 1":{"property 1":false,"device_batteryLevelLeft":false}},{"Device 2":{"device_address":"00:00:00:00:00:01"}}])")},
    };
    for (const auto& [given, expected] : cases) {
        StandIns standIns;
        EXPECT_EQ(written(namelessReport(given, standIns)), expected) << given;
    }
}

TEST(NamelessReport, LetsAWatchMeetTheDeviceThatItMetBefore)
{
    StandIns standIns;
    const auto watch =
        R"({"aa-bb": {"name": "Jane", "level": 80, "of": ["AA:BB:CC:DD:EE:FF", "Jane", true, 2.5]}, "AA-BB": {}})";
    EXPECT_EQ(written(namelessWatchFile(watch, standIns)),
        R"({"00-00-00-00-00-01":{"key 1":"text 1","key 2":80,"key 3":["00-00-00-00-00-02","text 1",true,2.5]},"00-00-00-00-00-03":{}})");
    const auto report = listed(R"([{"Mouse": {"device_address": "AA:BB", "device_batteryLevel": "5"}}])");
    const auto levels = parseBluetoothReport(written(namelessReport(report, standIns)));
    EXPECT_TRUE(levels.contains("00-00-00-00-00-01"));
    EXPECT_EQ(written(namelessWatchFile("[\"Jane\", {\"Jane\": null}]", standIns)), R"(["text 1",{"key 4":null}])");
    EXPECT_EQ(written(namelessWatchFile("Jane", standIns)), "{");
}
