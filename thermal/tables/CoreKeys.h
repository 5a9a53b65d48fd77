#pragma once

#include "thermal/tables/TableMaking.h"

namespace orv::Orv_SMCProfileKeys {

inline constexpr auto efficiencyCores =
    std::to_array<SensorKey>({"Tp09", "Tp0T", "Tp17", "Tp1h", "Te05", "Te0H", "Te0L", "Te0S"});

// clang-format off
inline constexpr auto performanceCores = std::to_array<SensorKey>({
    "Tp01", "Tp05", "Tp0D", "Tp0H", "Tp0L", "Tp0P", "Tp0X", "Tp0b", "Tp0f", "Tp0j", "Tp0n", "Tp0r", "Tp0v",
    "Tp13", "Tp1F", "Tp1J", "Tp1R", "Tp1j", "Tp1n", "Tp1p", "Tp1t", "Tp1w", "Tp1z",
    "Tp22", "Tp25", "Tp28", "Tp2B", "Tp2E", "Tp2J", "Tp2M", "Tp2Q", "Tp2T", "Tp2W", "Tp2g", "Tp2k", "Tp2s",
    "Tp30", "Tp34", "Tp3C",
});
// clang-format on

static_assert(efficiencyCores.size() == 8 && keysAreUnique<efficiencyCores>());
static_assert(keysOfLength(4, efficiencyCores) == efficiencyCores.size());
static_assert(performanceCores.size() == 39 && keysAreUnique<performanceCores>());
static_assert(keysOfLength(4, performanceCores) == performanceCores.size());

} // namespace orv::Orv_SMCProfileKeys
