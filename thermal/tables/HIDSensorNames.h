#pragma once

#include "thermal/tables/TableMaking.h"

namespace orv::Orv_SMCProfileKeys {

// Titles repeat on purpose: HID sensors are reported one by one, whatever they are called.
// clang-format off
inline constexpr auto hidRows = joined(
    family<0, 15>("Th?i", "PMGR SOC Die #"),
    family<0, 4>("Ts?i", "SOC #"),
    std::to_array<SensorKeyPair>({{"Ts5i", "Image Signal Processing"}}),
    family<6, 12>("Ts?i", "SOC #"),
    // Kept: there is no Tsdi, and the titles after it are one behind their digit.
    std::to_array<SensorKeyPair>({{"Tsei", "SOC 13"}, {"Tsfi", "SOC 14"}}),
    family<0, 15>("Tg?i", "GPU #"),
    family<0, 15>("Te?i", "Core Efficiency #"),
    family<0, 15>("Tp?i", "Core Performance #"),
    family<0, 15>("TP?d", "PMU DEV #"),
    family<0, 15>("TP?b", "PMU DIE #"),
    family<0, 15>("TP?l", "PMU DIE #"),
    family<0, 15>("TR?d", "PMU2 DEV #"),
    family<0, 15>("TR?b", "PMU2 DIE #"),
    family<0, 15>("TR?l", "PMU2 DIE #"),
    family<0, 15>("TN?n", "NAND CH #"),
    family<0, 15>("Ta?i", "Neural Engine"),
    std::to_array<SensorKeyPair>({
        {"TG0B", "Battery 1"},
        {"TG0C", "Battery 2"},
        {"TG1B", "Battery 3"},
        {"TG2B", "Battery 4"},
        {"TG0H", "Battery 5"},
        {"TG0V", "Battery 6"},
    }),
    family<0, 15>("TP?s", "PMU TP?s"),
    family<0, 15>("TP?g", "PMU TP?g"));
// clang-format on

static_assert(hidRows.size() == 245 && keysAreUnique<hidRows>());
static_assert(keysOfLength(4, hidRows) == hidRows.size());

} // namespace orv::Orv_SMCProfileKeys
