#include "thermal/Collection.h"

#include "tests/support/TestMac.h"
#include "tests/support/ThermalReadings.h"

#include <gtest/gtest.h>

#include <cstring>

using namespace orv;
using namespace orv::Orv_SMCHelper;

namespace {

std::string floatRow(const std::string& key, float degrees)
{
    std::uint8_t bytes[4];
    std::memcpy(bytes, &degrees, sizeof(bytes));
    char digits[9];
    std::snprintf(digits, sizeof(digits), "%02x%02x%02x%02x", bytes[0], bytes[1], bytes[2], bytes[3]);
    return R"({"key": ")" + key + R"(", "type": "flt ", "bytes": ")" + digits + "\"}";
}

std::string rows(std::initializer_list<std::pair<const char*, float>> readings)
{
    std::string text;
    for (const auto& [key, degrees] : readings)
        text += (text.empty() ? "" : ", ") + floatRow(key, degrees);
    return text;
}

std::string appleText(const char* processor, std::initializer_list<std::pair<const char*, float>> readings)
{
    return machineText("Mac14,2", processor, rows(readings));
}

ThermalDictionary collect(TestMac& mac)
{
    return collectThermalReadings(OrvTemperatureFans(), mac.smc, mac.simulation.mac);
}

std::map<std::string, std::string> titles(const ThermalDictionary& readings)
{
    std::map<std::string, std::string> result;
    for (const auto& [code, reading] : readings)
        result[code] = std::visit([](const auto& entry) { return entry.title; }, reading);
    return result;
}

using Titles = std::map<std::string, std::string>;

} // namespace

TEST(Collection, GivesASharedTitleToTheFirstKeyInByteOrder)
{
    TestMac mac(intelText(rows({{"TC0p", 56}, {"TC0P", 55}, {"TH0a", 40}, {"TH0A", 9}})));
    const auto readings = collect(mac);
    EXPECT_EQ(titles(readings), (Titles{{"TC0P", "CPU Proximity"}, {"TH0a", "SSD 1 Proximity"}}));
    EXPECT_EQ(degreesOf(readings, "TC0P"), 55.0);
}

TEST(Collection, LeavesOutWhatIsNotAboveTheThreshold)
{
    TestMac mac(intelText(rows({{"TA0P", 10}, {"TA1P", 10.0001f}, {"TA2P", -40}}) + R"(,
        {"key": "TB0T", "type": "flt ", "bytes": "0000c07f"}, {"key": "TB1T", "type": "flt ", "bytes": "0000807f"},
        {"key": "TW0P", "type": "si16", "bytes": "2f80"}, {"key": "TZZZ", "type": "sp78", "bytes": "2f80"})"));
    EXPECT_EQ(titles(collect(mac)), (Titles{{"TA1P", "Ambient 2"}, {"TB1T", "Battery Sensor 1"}}));
}

TEST(Collection, OpensAndClosesOnceAndLeaksNothing)
{
    TestMac mac(intelText(rows({{"TC0P", 55}, {"F0Ac", 2000}})));
    for (int refresh = 0; refresh < 3; ++refresh)
        EXPECT_EQ(collect(mac).size(), 2u);
    EXPECT_EQ(ioKitUsage().openConnections, 0);
    EXPECT_EQ(ioKitUsage().liveObjects, 0);
    // The walk over 2 keys is made once: 2 exchanges for the count and 3 indexes; then 2 for each of 4 values.
    EXPECT_EQ(mac.hardware.exchanges.size(), 5u + 3 * 8u);
}

TEST(Collection, WithoutAnSMCIsEmpty)
{
    TestMac mac(R"({"sysctl": {"hw.model": "Linux", "machdep.cpu.brand_string": "Some processor"}})");
    EXPECT_TRUE(collect(mac).empty());
}

TEST(Collection, NeverReadsMoreCoresThanTheMachineHas)
{
    TestMac mac(appleText("Apple M3",
        {{"Te05", 40}, {"Te0H", 41}, {"Te0L", 42}, {"Te0S", 43}, {"Tp09", 44}, {"Tg05", 30}, {"Tg0D", 5},
            {"Tg0L", 31}}));
    const auto readings = collect(mac);
    EXPECT_EQ(titles(readings),
        (Titles{{"Te05", "Core Efficiency 1"}, {"Te0H", "Core Efficiency 2"}, {"Te0L", "Core Efficiency 3"},
            {"Te0S", "Core Efficiency 4"}, {"Tg05", "GPU 1"}, {"Tg0L", "GPU 3"}}));
    EXPECT_EQ(mac.hardware.count("info Tp09"), 0u);
}

TEST(Collection, CountsEachKindOfCoreByItself)
{
    TestMac mac(appleText("Apple M3", {{"Te05", 40}, {"Te0H", 41}, {"Tp01", 50}, {"Tp05", 51}, {"Tp0D", 52}}));
    OrvTemperatureFans profile;
    profile.numberOfEfficiencyCores = 1;
    profile.numberOfPerformanceCores = 2;
    EXPECT_EQ(titles(collectThermalReadings(profile, mac.smc, mac.simulation.mac)),
        (Titles{{"Te05", "Core Efficiency 1"}, {"Tp01", "Core Performance 1"}, {"Tp05", "Core Performance 2"}}));
    EXPECT_EQ(mac.hardware.count("info Te0H") + mac.hardware.count("info Tp0D"), 0u);
}

TEST(Collection, ReadsAKeyThatIsListedTwiceOnce)
{
    TestMac mac(appleText("Apple M3", {{"Te05", 40}, {"Te0H", 41}}));
    mac.smc.keysList = {"Te0H", "Te05", "Te05"};
    EXPECT_EQ(titles(collect(mac)), (Titles{{"Te05", "Core Efficiency 1"}, {"Te0H", "Core Efficiency 2"}}));
    EXPECT_EQ(mac.hardware.count("info"), 2u);
}

TEST(Collection, LeavesAGapWhereACoreCannotBeRead)
{
    TestMac mac(appleText("Apple M1 Pro", {{"Tp01", 0}, {"Tp05", 50}, {"TB0T", 30}, {"Ts01", 35}}));
    EXPECT_EQ(titles(collect(mac)),
        (Titles{{"TB0T", "Battery Sensor 0"}, {"Tp05", "Core Performance 2"}, {"Ts01", "SOC 1"}}));
}

TEST(Collection, StandsInForIdleCoresOnM2)
{
    TestMac mac(appleText("Apple M2 Max", {{"Te05", 38.2f}, {"Tp05", 0}, {"Tp09", 3}, {"Tg05", 0}, {"Tm01", 0}}));
    const auto readings = collect(mac);
    EXPECT_EQ(titles(readings),
        (Titles{{"Te05", "Core Efficiency 1"}, {"Tp05", "Core Performance 1"}, {"Tp09", "Core Efficiency 2"}}));
    EXPECT_EQ(degreesOf(readings, "Tp05"), static_cast<double>(38.2f));
}

TEST(Collection, HasNoStandInForACoreThatFails)
{
    TestMac mac(appleText("Apple M2", {{"Te05", 40}, {"Tp01", 0}, {"Tp05", 50}}));
    mac.hardware.keyWithFailingBytes = "Tp01";
    EXPECT_EQ(titles(collect(mac)), (Titles{{"Te05", "Core Efficiency 1"}, {"Tp05", "Core Performance 2"}}));
}

TEST(Collection, HasAStandInOnlyAboveZero)
{
    TestMac cool(appleText("Apple M2", {{"Te05", 0.5f}, {"Tp05", 0}}));
    EXPECT_EQ(degreesOf(collect(cool), "Tp05"), 0.5); // which would not count by itself
    TestMac cold(appleText("Apple M2", {{"Te05", 0}, {"Tp05", 0}}));
    EXPECT_TRUE(collect(cold).empty());
}

TEST(Collection, SkipsTheTp0KeysOnM4AndStandsInForOthers)
{
    TestMac mac(appleText("Apple M4 Pro", {{"Te05", 45}, {"Tp01", 50}, {"Tp0D", 51}, {"Tp1F", 2}, {"Tp1J", 60}}));
    const auto readings = collect(mac);
    EXPECT_EQ(titles(readings),
        (Titles{{"Te05", "Core Efficiency 1"}, {"Tp1F", "Core Performance 1"}, {"Tp1J", "Core Performance 2"}}));
    EXPECT_EQ(degreesOf(readings, "Tp1F"), 45.0);
    EXPECT_EQ(mac.hardware.count("info Tp0"), 0u);
}

TEST(Collection, HasNoStandInOnOtherChips)
{
    TestMac mac(appleText("Apple M3 Max", {{"Te05", 45}, {"Tp01", 0}, {"Tp1J", 60}}));
    EXPECT_EQ(titles(collect(mac)), (Titles{{"Te05", "Core Efficiency 1"}, {"Tp1J", "Core Performance 2"}}));
    EXPECT_EQ(mac.hardware.count("info Te05"), 1u);
}

TEST(Collection, KeepsTheCommonEntryWhereBothReadersHaveTheKey)
{
    // Only a title decides here: no key is in both tables, so the fans show that merging keeps all of them.
    TestMac mac(appleText("Apple M1 Max", {{"TB0T", 30}, {"Ts01", 35}, {"F0Ac", 1500}}));
    EXPECT_EQ(titles(collect(mac)), (Titles{{"F0Ac", "Left Side"}, {"TB0T", "Battery Sensor 0"}, {"Ts01", "SOC 1"}}));
}

TEST(Collection, PrefersTheHIDReadingOnM1)
{
    TestMac mac(
        machineText("MacBookAir10,1", "Apple M1", rows({{"TB0T", 30}, {"Tp01", 50}, {"TH0B", 41}, {"TH0a", 40}}),
            R"({"locationID": 1416638569, "temperature": 41.5}, {"locationID": 1413624898, "temperature": 5.0})"));
    const auto readings = collect(mac);
    EXPECT_EQ(
        titles(readings), (Titles{{"TB0T", "Battery Sensor 0"}, {"TH0B", "SSD 1"}, {"Tp0i", "Core Performance 0"}}));
    EXPECT_EQ(degreesOf(readings, "Tp0i"), 41.5);
}

TEST(SocSensorName, FollowsTheFirstRuleThatApplies)
{
    EXPECT_EQ(socSensorName("Te0L", 7, 2, 3), "Core Efficiency 7");
    EXPECT_EQ(socSensorName("Tp01", 7, 12, 3), "Core Performance 12");
    EXPECT_EQ(socSensorName("Tgzz", 7, 2, 3), "GPU 3");
    EXPECT_EQ(socSensorName("Th0P", 7, 2, 3), "PMGR SOC Die 7");
    EXPECT_EQ(socSensorName("Tzzz", 7, 2, 3), "Unknown");
}
