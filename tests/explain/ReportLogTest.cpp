#include "explain/ReportLog.h"

#include "bluetooth/SystemProfilerReport.h"

#include <gtest/gtest.h>

#include <tuple>

using namespace orv;

TEST(ReportLog, SaysHowFarTheWalkCame)
{
    struct Case {
        std::string report;
        ReportOutcome outcome;
        std::optional<std::size_t> spoiler = std::nullopt;
    };
    using enum ReportOutcome;
    const Case cases[]{{"{", notJSON}, {"[]", notAnObject}, {"{}", noDataType},
        {R"({"SPBluetoothDataType": {}})", noDataType}, {R"({"SPBluetoothDataType": []})", noDataType},
        {R"({"SPBluetoothDataType": [5]})", noConnectedList}, {R"({"SPBluetoothDataType": [{}]})", noConnectedList},
        {R"({"SPBluetoothDataType": [{"device_connected": {}}]})", noConnectedList},
        {R"({"SPBluetoothDataType": [{"device_connected": []}]})", walked},
        {R"({"SPBluetoothDataType": [{"device_connected": [{}, 5, 6]}]})", walked, 1}};
    for (const auto& [report, outcome, spoiler] : cases) {
        ReportLog log;
        parseBluetoothReport(report, &log);
        EXPECT_EQ(std::tie(log.outcome, log.spoiler), std::tie(outcome, spoiler)) << report;
        EXPECT_EQ(log.devices.size(), spoiler ? 3u : 0u) << report;
        for (const auto& device : log.devices)
            EXPECT_EQ(device.outcome, DeviceOutcome::spoiltList) << report;
    }
}

TEST(ReportLog, SaysWhatBecameOfEachDevice)
{
    struct Case {
        std::string device;
        DeviceOutcome outcome;
        const char* member = "";
        const char* key = "";
    };
    using enum DeviceOutcome;
    const Case cases[]{{"{}", notADevice}, {R"({"A": "text"})", notADevice},
        {R"({"A": {"device_address": "1", "device_batteryLevel": "5", "other": null}})", notText, "other"},
        {R"({"A": {"device_batteryLevel": "5"}})", noAddress}, {R"({"A": {"device_address": "1"}})", noLevel},
        {R"({"A": {"device_address": "A:1", "device_batteryLevel": "5"}})", shown, "", "a-1"}};
    std::string list;
    for (const auto& each : cases)
        list += (list.empty() ? "" : ", ") + each.device;
    ReportLog log;
    parseBluetoothReport(R"({"SPBluetoothDataType": [{"device_connected": [)" + list + "]}]}", &log);
    ASSERT_EQ(log.devices.size(), std::size(cases));
    for (std::size_t place = 0; place < std::size(cases); ++place) {
        const auto& device = log.devices[place];
        EXPECT_EQ(std::tuple(device.outcome, device.member, device.key),
            std::tuple(cases[place].outcome, cases[place].member, cases[place].key))
            << cases[place].device;
    }
}
