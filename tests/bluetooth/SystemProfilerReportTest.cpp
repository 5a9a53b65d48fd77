#include "bluetooth/SystemProfilerReport.h"

#include "bluetooth/IntegerValue.h"

#include <gtest/gtest.h>

using namespace orv;

namespace {

Dictionary levels(std::initializer_list<std::pair<const char*, std::int64_t>> list)
{
    Dictionary result;
    for (const auto& [level, percent] : list)
        result.set(level, percent);
    return result;
}

std::string reportOf(const std::string& devices)
{
    return R"({"SPBluetoothDataType": [{"controller_properties": {"controller_state": "attrib_on"},
        "device_connected": [)"
        + devices + R"(], "device_not_connected": [{"Old": {"device_address": "00:00:00:00:00:01",
        "device_batteryLevelMain": "50%"}}]}, {"device_connected": [{"Second": {"device_address": "00:00:00:00:00:02",
        "device_batteryLevelMain": "50%"}}]}]})";
}

BluetoothBatteryDictionary parse(const std::string& devices)
{
    return parseBluetoothReport(reportOf(devices));
}

} // namespace

TEST(BluetoothReport, GivesTheLevelsOfConnectedDevices)
{
    const auto result = parse(R"({"Mouse": {"device_address": "AA:BB:CC:DD:EE:FF", "device_batteryLevelMain": "55%",
        "device_vendorID": "0x05AC"}}, {"Earbuds": {"device_address": "Ab-Cd", "device_batteryLevelCase": "100 %",
        "device_batteryLevelLeft": "-1", "device_batteryLevelRight": "none"}}, {"Both": {"device_address": "1",
        "device_batteryLevelMain": "90%", "device_batteryLevel": "80%"}})");
    const BluetoothBatteryDictionary expected{
        {"aa-bb-cc-dd-ee-ff", levels({{"batteryLevel", 55}})},
        {"ab-cd", levels({{"batteryLevelCase", 100}, {"batteryLevelLeft", -1}, {"batteryLevelRight", 0}})},
        {"1", levels({{"batteryLevel", 80}})},
    };
    EXPECT_EQ(result, expected);
}

TEST(BluetoothReport, SkipsADeviceThatIsNotAsItShouldBe)
{
    const std::string good = R"({"Good": {"device_address": "1", "device_batteryLevel": "7"}})";
    const BluetoothBatteryDictionary onlyGood{{"1", levels({{"batteryLevel", 7}})}};
    for (const auto* device : {"{}", R"({"A": "text"})", R"({"A": {"device_address": "2"}})",
             R"({"A": {"device_batteryLevel": "5"}})", R"({"A": {"device_address": "2", "device_batteryLevel": 5}})",
             R"({"A": {"device_address": "2", "device_batteryLevel": "5", "services": []}})",
             R"({"A": {"device_address": "2", "device_batteryLevel": "5", "other": null}})",
             R"({"A": 1, "B": {"device_address": "2", "device_batteryLevel": "5"}})"})
        EXPECT_EQ(parse(device + (", " + good)), onlyGood) << device;
}

TEST(BluetoothReport, KeepsTheLaterOfTwoDevicesWithOneAddressWhole)
{
    const auto result = parse(R"({"A": {"device_address": "A:1", "device_batteryLevelLeft": "5"}},
        {"B": {"device_address": "a-1", "device_batteryLevelRight": "6"}})");
    EXPECT_EQ(result, (BluetoothBatteryDictionary{{"a-1", levels({{"batteryLevelRight", 6}})}}));
}

TEST(BluetoothReport, IsEmptyWhenTheWalkCannotBeMade)
{
    const std::string device = R"({"A": {"device_address": "1", "device_batteryLevel": "7"}})";
    EXPECT_TRUE(parse(device + ", 5").empty());
    EXPECT_TRUE(parse(device + ", []").empty());
    for (const auto* report : {"", "[]", "{", R"({"SPBluetoothDataType": {}})", R"({"SPBluetoothDataType": []})",
             R"({"SPBluetoothDataType": ["x", {"device_connected": [{"A": {"device_address": "1",
                "device_batteryLevel": "7"}}]}]})",
             R"({"SPBluetoothDataType": [{}]})", R"({"SPBluetoothDataType": [{"device_connected": {}}]})"})
        EXPECT_TRUE(parseBluetoothReport(report).empty()) << report;
}

TEST(BluetoothReport, LowersAsciiLettersOnly)
{
    const auto result = parse(R"({"A": {"device_address": "ÄAZ@[`{09:İ", "device_batteryLevel": "7"}})");
    EXPECT_TRUE(result.contains("Äaz@[`{09-İ"));
}

TEST(DeviceAddress, HasSixGroupsOfTwoDigits)
{
    struct Case {
        const char* text;
        bool isAddress;
    };
    const Case cases[]{{"00:19:af:AF:90:99", true}, {"00-19-af-AF:90:99", true}, {"00:19:af:AF:90:9", false},
        {"00:19:af:AF:90:999", false}, {"00:19:af:AF:90/99", false}, {"00:19:af:AF:9g:99", false},
        {"00:19:af:A`:90:99", false}, {"00:19:@f:AF:90:99", false}, {"00:19:Gf:AF:90:99", false},
        {"/0:19:af:AF:90:99", false}, {"00:1::af:AF:90:99", false}, {"00019:af:AF:90:99", false}, {"", false}};
    for (const auto& [text, isAddress] : cases)
        EXPECT_EQ(isDeviceAddress(text), isAddress) << text;
}

TEST(IntegerValue, ReadsTheNumberAtTheStart)
{
    struct Case {
        const char* text;
        std::int64_t number;
    };
    const Case cases[]{{"85%", 85}, {"100 %", 100}, {"100\u00A0%", 100}, {"%85", 0}, {"", 0}, {"+7", 7}, {"-7", -7},
        {"+-7", 0}, {"-+7", 0}, {"--7", 0}, {"- 7", 0}, {" \t\r\n\v\f12x3", 12}, {"\u00A0\u2000\u200B\u30005", 5},
        {"\u20285", 0}, {"\0105", 0}, {"\0165", 0}, {"\u1FFF5", 0}, {"\u200C5", 0}, {"\u0665", 0}, {"007", 7},
        {"9223372036854775807", INT64_MAX}, {"9223372036854775808", INT64_MAX}, {"-9223372036854775808", INT64_MIN},
        {"-99999999999999999999999", INT64_MIN}, {"+99999999999999999999999%", INT64_MAX},
        {"\xFF"
         "5",
            0}};
    for (const auto& [text, number] : cases)
        EXPECT_EQ(integerValue(text), number) << text;
}
