#include "thermal/Orv_SMCProfileKeys.h"
#include "thermal/tables/TableMaking.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <initializer_list>
#include <string_view>
#include <type_traits>

using namespace orv;
using namespace orv::Orv_SMCProfileKeys;
using namespace std::string_view_literals;

static_assert(!std::is_constructible_v<SensorKey, decltype("TC100C")>, "a text that does not fit is refused");
static_assert(repeatedKey(std::to_array<SensorKey>({"TC0P", "TC0p", "TA0P", "TC0P"})) == "TC0P");
static_assert(repeatedKey(std::to_array<SensorKey>({"TC0P", "TC0p", "TC0"})) == "");
static_assert(keyWithoutT(std::to_array<SensorKeyPair>({{"TC0P", "a"}, {"tC0P", "b"}, {"VC0P", "c"}})) == "tC0P");
static_assert(keyWithoutT(std::to_array<SensorKey>({"TC0P"})) == "");

TEST(SensorCatalogue, EveryRowIsFoundUnderItsOwnKey)
{
    for (const auto* table : {&intelSensorKeys, &commonSensorKeys, &socSensorKeys, &hidSensorNames}) {
        for (const SensorKeyPair& row : table->rows) {
            ASSERT_TRUE(table->contains(row.key)) << keyOf(row);
            EXPECT_EQ(table->find(row.key)->name, row.name) << keyOf(row);
        }
    }
}

TEST(SensorCatalogue, RowsCarryTheirTitles)
{
    const struct {
        const SensorTable& table;
        std::string_view key, name;
    } cases[] = {
        {intelSensorKeys, "TP0P", "Platform Controller Hub Proximity"}, {intelSensorKeys, "TC0c", "CPU Core PECI"},
        {intelSensorKeys, "TC9C", "CPU Core 9"}, {intelSensorKeys, "TC20c", "CPU Core 20"},
        {intelSensorKeys, "TM8P", "Memory 8 Proximity"}, {intelSensorKeys, "TB0T", "Battery"},
        {commonSensorKeys, "TB0T", "Battery Sensor 0"}, {commonSensorKeys, "TaRF", "Airflow Right"},
        {commonSensorKeys, "TH9a", "SSD 10"}, {commonSensorKeys, "TH0B", "SSD 1"},
        {socSensorKeys, "Te0L", "Core Efficiency 2"}, {socSensorKeys, "Tp3C", "Core Performance 39"},
        {socSensorKeys, "Tg3y", "GPU 32"}, {socSensorKeys, "Th1h", "PMGR SOC Die 18"},
        {hidSensorNames, "Ts5i", "Image Signal Processing"}, {hidSensorNames, "Tsci", "SOC 12"},
        {hidSensorNames, "Tsei", "SOC 13"}, {hidSensorNames, "Tsfi", "SOC 14"}, {hidSensorNames, "Tg0i", "GPU 0"},
        {hidSensorNames, "TRfl", "PMU2 DIE 15"}, {hidSensorNames, "Tafi", "Neural Engine"},
        {hidSensorNames, "TPas", "PMU TPas"}, {hidSensorNames, "TPfg", "PMU TPfg"}, //
    };
    for (const auto& [table, key, name] : cases) {
        ASSERT_TRUE(table.contains(key)) << key;
        EXPECT_EQ(table.find(key)->name, name);
    }
}

// Too many rows to be written out twice; whoever changes one on purpose changes its table's sum.
TEST(SensorCatalogue, NoRowChangesUnnoticed)
{
    std::uint32_t sum = 0;
    const auto add = [&sum](std::string_view text) {
        for (const char character : text) // FNV-1a
            sum = (sum ^ static_cast<unsigned char>(character)) * 16777619u;
    };
    const auto sumOfSensors = [&](const SensorTable& table) {
        sum = 2166136261u;
        for (const SensorKeyPair& row : table.rows)
            add(keyOf(row)), add("="), add(row.name), add("\n");
        return sum;
    };
    const auto sumOfKeys = [&](const KeyList& keys) {
        sum = 2166136261u;
        for (const auto& key : keys.rows)
            add(keyOf(key)), add("\n");
        return sum;
    };
    EXPECT_EQ(sumOfSensors(intelSensorKeys), 97244948u);
    EXPECT_EQ(sumOfSensors(commonSensorKeys), 1278406252u);
    EXPECT_EQ(sumOfSensors(socSensorKeys), 4126055673u);
    EXPECT_EQ(sumOfSensors(hidSensorNames), 4111036902u);
    EXPECT_EQ(sumOfKeys(efficiencyCoreKeys), 2629033189u);
    EXPECT_EQ(sumOfKeys(performanceCoreKeys), 458657989u);
}

TEST(SensorCatalogue, UpperAndLowerCaseKeysAreDistinctRows)
{
    EXPECT_NE(intelSensorKeys.find("TC0P"), intelSensorKeys.find("TC0p"));
    EXPECT_EQ(intelSensorKeys.find("TC0P")->name, intelSensorKeys.find("TC0p")->name);
    EXPECT_FALSE(performanceCoreKeys.contains("TP01"));
}

TEST(SensorCatalogue, OnlyWholeKeysAreFound)
{
    for (const auto key : {""sv, "T"sv, "TC0"sv, "TC0P\0"sv, "TC0PP"sv, "TC21C"sv, "~~~~"sv, "\xffTTT"sv})
        EXPECT_EQ(intelSensorKeys.find(key), nullptr) << key;
}
