#include "thermal/SensorGroup.h"

#include <algorithm>
#include <iterator>

namespace orv {

namespace {

struct TitleRow {
    std::string_view beginning; // whole words
    SensorGroup group;
};

// The first row that fits decides.
// clang-format off
constexpr TitleRow titleRows[]{
    {"CPU", SensorGroup::cpu},
    {"Core Efficiency", SensorGroup::cpu},
    {"Core Performance", SensorGroup::cpu},
    // Of the chip that holds the cores, wherever on it.
    {"SOC", SensorGroup::cpu},
    {"PMGR SOC", SensorGroup::cpu},
    // Its memory too, which sits on the same board.
    {"GPU", SensorGroup::gpu},
    {"AMD GPU", SensorGroup::gpu},
    {"Intel GPU", SensorGroup::gpu},
    {"PCIe GPU", SensorGroup::gpu},
    // A chip of the main board, as the other hubs are.
    {"Memory Controller Hub", SensorGroup::other},
    {"Memory", SensorGroup::memory},
    {"DIMM", SensorGroup::memory},
    {"Battery", SensorGroup::battery},
    {"Drive Bay", SensorGroup::storage},
    {"HDD", SensorGroup::storage},
    {"NAND", SensorGroup::storage},
    {"Optical Drive", SensorGroup::storage},
    {"SSD", SensorGroup::storage},
    {"Charger", SensorGroup::power},
    {"PMU", SensorGroup::power},
    {"PMU2", SensorGroup::power},
    {"Power Supply", SensorGroup::power},
    {"Air Flow", SensorGroup::airflowAndEnclosure},
    {"Airflow", SensorGroup::airflowAndEnclosure},
    {"Ambient", SensorGroup::airflowAndEnclosure},
    {"DCIn Air Flow", SensorGroup::airflowAndEnclosure},
    {"Fin Stack", SensorGroup::airflowAndEnclosure},
    {"Palm Rest", SensorGroup::airflowAndEnclosure},
    {"Skin", SensorGroup::airflowAndEnclosure},
    {"Vent", SensorGroup::airflowAndEnclosure},
    {"Airport", SensorGroup::radio},
    {"Wireless", SensorGroup::radio},
};
// clang-format on

constexpr bool beginsWithWords(std::string_view title, std::string_view words)
{
    return title.starts_with(words) && (title.size() == words.size() || title[words.size()] == ' ');
}

constexpr bool rowsStandAtTheirGroup()
{
    for (std::size_t index = 0; index < sensorGroups.size(); ++index) {
        if (sensorGroups[index].group != static_cast<SensorGroup>(index))
            return false;
    }
    return true;
}
static_assert(rowsStandAtTheirGroup());

} // namespace

SensorGroup groupOf(std::string_view title)
{
    const auto* found =
        std::ranges::find_if(titleRows, [&](const auto& row) { return beginsWithWords(title, row.beginning); });
    return found == std::end(titleRows) ? SensorGroup::other : found->group;
}

} // namespace orv
