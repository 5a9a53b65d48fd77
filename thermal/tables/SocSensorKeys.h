#pragma once

#include "thermal/tables/CoreKeys.h"
#include "thermal/tables/TableMaking.h"

namespace orv::Orv_SMCProfileKeys {

// Core and GPU sensors are titled by counting those that read; here they stand because a key without a row is not read.
// clang-format off
inline constexpr auto socRows = joined(
    std::to_array<SensorKeyPair>({
        {"Te05", "Core Efficiency 1"},
        {"Te0H", "Core Efficiency 2"},
        {"Te0L", "Core Efficiency 2"}, // Kept: the doubled number and those that follow from it.
        {"Te0S", "Core Efficiency 3"},
        {"Tp09", "Core Efficiency 4"},
        {"Tp0T", "Core Efficiency 5"},
        {"Tp17", "Core Efficiency 6"},
        {"Tp1h", "Core Efficiency 7"},
    }),
    numbered(performanceCores, "Core Performance #"),
    numbered(std::to_array<SensorKey>({
        "Tg05", "Tg0D", "Tg0L", "Tg0T", "Tg0b", "Tg0f", "Tg0j", "Tg0r", "Tg0z",
        "Tg17", "Tg1F", "Tg1N", "Tg1V", "Tg1d", "Tg1l", "Tg1t",
        "Tg22", "Tg2A", "Tg2I", "Tg2Q", "Tg2Y", "Tg2g", "Tg2o", "Tg2w",
        "Tg34", "Tg3C", "Tg3K", "Tg3S", "Tg3a", "Tg3i", "Tg3q", "Tg3y",
    }), "GPU #"),
    numbered(std::to_array<SensorKey>({
        "Tm01", "Tm05", "Tm09", "Tm0D", "Tm0H", "Tm0L", "Tm0P", "Tm0T", "Tm0X", "Tm0b", "Tm0f", "Tm0j",
        "Tm17", "Tm1B", "Tm1F", "Tm1J", "Tm1N", "Tm1h", "Tm1l", "Tm1p", "Tm1t",
        "Tm2H",
    }), "Memory #"),
    numbered(std::to_array<SensorKey>({
        "Ts01", "Ts05", "Ts09", "Ts0D", "Ts0H", "Ts0L", "Ts0T", "Ts0X", "Ts0b", "Ts0f", "Ts0j",
        "Ts17", "Ts1B", "Ts1F", "Ts1J", "Ts1N", "Ts1h",
    }), "SOC #"),
    numbered(std::to_array<SensorKey>({
        "Th01", "Th05", "Th09", "Th0D", "Th0H", "Th0L", "Th0P", "Th0T", "Th0X", "Th0b", "Th0f", "Th0j",
        "Th17", "Th1B", "Th1F", "Th1J", "Th1N", "Th1h",
    }), "PMGR SOC Die #"));
// clang-format on

static_assert(socRows.size() == 136 && keysAreUnique<socRows>() && keysBeginWithT<socRows>());
static_assert(keysOfLength(4, socRows) == socRows.size());

} // namespace orv::Orv_SMCProfileKeys
