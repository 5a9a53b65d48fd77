#pragma once

#include "thermal/tables/TableMaking.h"

namespace orv::Orv_SMCProfileKeys {

// clang-format off
inline constexpr auto commonRows = joined(
    family<0, 7>("TB#T", "Battery Sensor #"),
    family<0, 3>("Ts#P", "Palm Rest #"),
    std::to_array<SensorKeyPair>({
        {"TCHP", "Charger Proximity"},
        {"TPSP", "Power Supply Proximity"},
        {"TPSD", "Power Supply"},
        {"TW0P", "Wireless Proximity"},
    }),
    family<0, 9>("TH#a", "SSD #", 1),
    std::to_array<SensorKeyPair>({
        {"TaLP", "Airflow Left"},
        // Not "TaRP": the right-airflow key does not follow its neighbours.
        {"TaRF", "Airflow Right"},
        {"TaMP", "Airflow Middle"},
    }),
    // Titles shared with TH0a to TH4a on purpose: where both read, the TH?B key sorts first and is the one reported.
    family<0, 4>("TH#B", "SSD #", 1),
    family<0, 1>("TT#D", "Thunderbolt #"));
// clang-format on

static_assert(commonRows.size() == 36 && keysAreUnique<commonRows>() && keysBeginWithT<commonRows>());
static_assert(keysOfLength(4, commonRows) == commonRows.size());

} // namespace orv::Orv_SMCProfileKeys
