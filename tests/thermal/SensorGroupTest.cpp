#include "thermal/SensorGroup.h"
#include "thermal/Orv_SMCProfileKeys.h"

#include <gtest/gtest.h>

#include <array>
#include <set>
#include <string>
#include <string_view>

using namespace orv;
using namespace orv::Orv_SMCProfileKeys;

namespace {

using Counts = std::array<int, sensorGroups.size()>; // in the order of SensorGroup

Counts countGroups(const SensorTable& table)
{
    Counts counts{};
    for (const SensorKeyPair& row : table.rows)
        ++counts[static_cast<std::size_t>(groupOf(row.name))];
    return counts;
}

} // namespace

// Whoever adds a sensor adds it to a count here, and so looks at where its title has put it.
TEST(SensorGroup, EveryRowOfTheCatalogueHasItsGroup)
{
    //                                           cpu  gpu mem bat sto pow air rad oth
    EXPECT_EQ(countGroups(intelSensorKeys), (Counts{60, 16, 14, 6, 17, 9, 21, 2, 24}));
    EXPECT_EQ(countGroups(commonSensorKeys), (Counts{0, 0, 0, 8, 15, 3, 7, 1, 2}));
    EXPECT_EQ(countGroups(socSensorKeys), (Counts{82, 32, 22, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(countGroups(hidSensorNames), (Counts{62, 16, 0, 6, 16, 128, 0, 0, 17}));
}

TEST(SensorGroup, OnlyTheseTitlesAreOfNoOther)
{
    std::set<std::string, std::less<>> others;
    for (const auto* table : {&intelSensorKeys, &commonSensorKeys, &socSensorKeys, &hidSensorNames}) {
        for (const SensorKeyPair& row : table->rows) {
            if (groupOf(row.name) == SensorGroup::other)
                others.emplace(std::string_view(row.name));
        }
    }
    EXPECT_EQ(others,
        (std::set<std::string, std::less<>>{"Backlight Proximity", "Camera Proximity", "Image Signal Processing",
            "LCD Proximity", "LCD TCON Proximity", "MCP Die", "MCP Proximity", "Main Logic Board Proximity",
            "Memory Controller Hub Die", "Memory Controller Hub Heatsink", "Neural Engine",
            "Platform Controller Hub Die", "Platform Controller Hub Proximity", "Thunderbolt 0", "Thunderbolt 1",
            "Thunderbolt 1 Proximity", "Thunderbolt 2 Proximity", "Thunderbolt Die Left", "Thunderbolt Die Right",
            "Thunderbolt Proximity"}));
}

TEST(SensorGroup, IsCalledAsBefore)
{
    std::string names;
    for (const auto& [group, identifier, heading] : sensorGroups)
        names.append(identifier).append("=").append(heading).append("\n");
    EXPECT_EQ(names,
        "cpu=CPU\ngpu=GPU\nmemory=Memory\nbattery=Battery\nstorage=Storage\npower=Power\n"
        "airflow_and_enclosure=Airflow and enclosure\nradio=Radio\nother=Other\n");
}

TEST(SensorGroup, TitlesThatShareAWordAreToldApart)
{
    const struct {
        std::string_view title, group;
    } cases[] = {
        {"GPU Memory Proximity", "gpu"}, {"Memory 8 Proximity", "memory"}, {"Intel GPU", "gpu"},
        {"CPU Heat Pipe", "cpu"}, {"GPU 2 Heat Pipe", "gpu"}, {"Battery Ambient", "battery"},
        {"Ambient 1", "airflow_and_enclosure"}, {"Battery Charge Proximity", "battery"}, {"Charger Proximity", "power"},
        {"Battery", "battery"}, {"Power Supply 2", "power"}, {"PMU TPas", "power"}, {"PMU2 DIE 15", "power"},
        {"PMGR SOC Die 3", "cpu"}, {"Airport Proximity", "radio"}, {"Airflow Left", "airflow_and_enclosure"},
        {"Core Performance 12", "cpu"}, {"", "other"}, {"GPUs", "other"}, {"A title of tomorrow", "other"}, //
    };
    for (const auto& [title, group] : cases)
        EXPECT_EQ(identifierOf(groupOf(title)), group) << title;
}
