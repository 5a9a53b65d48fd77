#include "explain/CollectionLog.h"

#include "tests/support/TestMac.h"
#include "thermal/Collection.h"
#include "thermal/Orv_SMCProfileKeys.h"

#include <gtest/gtest.h>

#include <tuple>

using namespace orv;

namespace {

constexpr auto eCore = SocKind::efficiencyCore;
constexpr auto pCore = SocKind::performanceCore;

struct Sensor {
    const char* key;
    SensorOutcome outcome;
    double degrees;
    const char* title;
    const char* holder;
    SocKind kind = SocKind::other;
    std::int64_t number = 0;
    SMCValueFault fault = SMCValueFault::none;
    const char* from = "";
};

void expectSensors(TestMac& mac, const std::vector<Sensor>& expected)
{
    CollectionLog log;
    const OrvTemperatureFans profile;
    const auto readings = Orv_SMCHelper::collectThermalReadings(profile, mac.smc, mac.simulation.mac, &log);
    EXPECT_EQ(readings, Orv_SMCHelper::collectThermalReadings(profile, mac.smc, mac.simulation.mac));
    EXPECT_EQ(log.sensors.size(), expected.size());
    for (const auto& [key, outcome, degrees, title, holder, kind, number, fault, from] : expected) {
        const auto& sensor = log.sensors[key];
        EXPECT_EQ(std::tie(sensor.outcome, sensor.fault, sensor.kind), std::tie(outcome, fault, kind)) << key;
        EXPECT_EQ(std::tuple(sensor.degrees, sensor.title, sensor.holder, sensor.from, sensor.number),
            std::tuple(degrees, title, holder, from, number))
            << key;
        EXPECT_FALSE(sensor.isReplaced) << key;
        const bool isRead = outcome != SensorOutcome::beyondCoreCount && outcome != SensorOutcome::leftOutOnChip;
        EXPECT_EQ(sensor.val.has_value(), isRead) << key;
    }
}

} // namespace

TEST(CollectionLog, SaysWhatBecameOfEachKey)
{
    TestMac mac(machineText("Mac14,2", "Apple M2", R"({"key": "Te05", "type": "sp78", "bytes": "2800"},
        {"key": "Te0H", "type": "sp78", "bytes": "0a00"}, {"key": "Te0L", "type": "sp78", "bytes": "2900", "fails": true},
        {"key": "Te0S", "type": "si16", "bytes": "2900"}, {"key": "Tp09", "type": "sp78", "bytes": "2900"},
        {"key": "Tp01", "type": "sp78", "bytes": "0000"}, {"key": "Tp05", "type": "sp78", "bytes": "2900", "size": 3},
        {"key": "Tp0D", "type": "sp78", "bytes": "ff00"}, {"key": "Tg05", "type": "sp78", "bytes": "0000"},
        {"key": "Tg0D", "type": "sp78", "bytes": "2a80"}, {"key": "Tm01", "type": "sp78", "bytes": "2900"},
        {"key": "TZZZ", "type": "sp78", "bytes": "2900"}, {"key": "TB0T", "type": "sp78", "bytes": "2900", "size": 0},
        {"key": "TH0a", "type": "sp78", "bytes": "1f00"}, {"key": "TH0B", "type": "sp78", "bytes": "1e00"})"));
    using enum SensorOutcome;
    expectSensors(mac,
        {{"Te05", shown, 40, "Core Efficiency 1", "Te05", eCore, 1}, {"Te0H", belowThreshold, 10, "", "", eCore, 2},
            {"Te0L", exchangeFailed, 0, "", "", eCore, 3},
            {"Te0S", noNumber, 0, "", "", eCore, 4, SMCValueFault::noNumber},
            {"Tp09", beyondCoreCount, 0, "", "", eCore, 5},
            {"Tp01", shown, 40, "Core Performance 1", "Tp01", pCore, 1, SMCValueFault::none, "Te05"},
            {"Tp05", noNumber, 0, "", "", pCore, 2, SMCValueFault::wrongSize},
            {"Tp0D", noNumber, 0, "", "", pCore, 3, SMCValueFault::negative},
            {"Tg05", belowThreshold, 0, "", "", SocKind::gpu, 1},
            {"Tg0D", shown, 42.5, "GPU 2", "Tg0D", SocKind::gpu, 2},
            {"Tm01", shown, 41, "Memory 1", "Tm01", SocKind::other, 1},
            {"TB0T", noNumber, 0, "Battery Sensor 0", "", SocKind::other, 0, SMCValueFault::empty},
            {"TH0B", shown, 30, "SSD 1", "TH0B"}, {"TH0a", titleTaken, 31, "SSD 1", "TH0B"}});
    TestMac other(machineText("Mac16,8", "Apple M4 Pro", R"({"key": "Tp01", "type": "sp78", "bytes": "2900"},
        {"key": "Tp09", "type": "sp78", "bytes": "2900"}, {"key": "Tp1F", "type": "sp78", "bytes": "2900"})"));
    expectSensors(other,
        {{"Tp01", leftOutOnChip, 0, "", "", pCore}, {"Tp09", leftOutOnChip, 0, "", "", eCore},
            {"Tp1F", shown, 41, "Core Performance 1", "Tp1F", pCore, 1}});
}

TEST(CollectionLog, SaysWhichTablesAndFansWereRead)
{
    using namespace Orv_SMCProfileKeys;
    struct Case {
        const char* model;
        const char* processor;
        std::vector<const SensorTable*> smcTables;
        const SensorTable* hidTable;
    };
    const Case cases[]{{"MacBookPro11,4", "Intel", {&intelSensorKeys}, nullptr},
        {"MacBookAir10,1", "Apple M1", {&commonSensorKeys}, &hidSensorNames},
        {"Mac14,2", "Apple M2", {&commonSensorKeys, &socSensorKeys}, nullptr}};
    for (const auto& [model, processor, smcTables, hidTable] : cases) {
        TestMac mac(machineText(model, processor, R"({"key": "F0Ac", "type": "ui16", "bytes": "0200"},
            {"key": "F0Mn", "type": "ui16", "bytes": "0100"}, {"key": "F2Ac", "type": "ui16", "bytes": "0200"})"));
        mac.hardware.keyWithFailingBytes = "F2Ac";
        mac.hardware.failure = SMCOutcome::lost();
        CollectionLog log;
        Orv_SMCHelper::collectThermalReadings(OrvTemperatureFans(), mac.smc, mac.simulation.mac, &log);
        EXPECT_EQ(log.smcTables, smcTables) << processor;
        EXPECT_EQ(log.hidTable, hidTable) << processor;
        ASSERT_EQ(log.fans.size(), 2u);
        EXPECT_EQ(log.fans[0].entry, (FanEntry{"Left Side", 512, 256, 0}));
        EXPECT_TRUE(log.fans[0].readSpeeds->actual && log.fans[0].readSpeeds->minimum);
        EXPECT_FALSE(log.fans[0].readSpeeds->maximum);
        EXPECT_EQ(log.fans[1].index, 2);
        EXPECT_FALSE(log.fans[1].readSpeeds);
    }
}

TEST(CollectionLog, SaysWhatBecameOfEachService)
{
    TestMac mac(machineText("MacBookAir10,1", "Apple M1", "", R"({"temperature": 40},
        {"locationID": 1416638569, "temperature": 41}, {"locationID": 1416638569, "temperature": 42},
        {"locationID": 1413951554, "temperature": 5}, {"locationID": 1413951555},
        {"locationID": 1416848489, "temperature": 40})")); // Tp0i twice, TG0B, TG0C, Tsdi
    CollectionLog log;
    Orv_SMCHelper::collectThermalReadings(OrvTemperatureFans(), mac.smc, mac.simulation.mac, &log);
    struct Case {
        std::optional<std::string> code;
        std::optional<double> degrees;
        std::optional<std::size_t> replacedBy;
        ServiceOutcome outcome;
    };
    using enum ServiceOutcome;
    const Case cases[]{{{}, {}, {}, notInCatalogue}, {"Tp0i", 41, 2, notInCatalogue}, {"Tp0i", 42, {}, shown},
        {"TG0B", 5, {}, belowThreshold}, {"TG0C", {}, {}, belowThreshold}, {"Tsdi", 40, {}, notInCatalogue}};
    ASSERT_EQ(log.services.size(), std::size(cases));
    for (std::size_t place = 0; place < std::size(cases); ++place) {
        const auto& service = log.services[place];
        const auto& [code, degrees, replacedBy, outcome] = cases[place];
        EXPECT_EQ(std::tie(service.code, service.degrees, service.replacedBy, service.outcome),
            std::tie(code, degrees, replacedBy, outcome))
            << place;
    }
}
