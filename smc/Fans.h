#pragma once

#include "readings/Readings.h"
#include "smc/FanObserver.h"
#include "smc/SMC.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace orv::Orv_SMCHelper {

inline constexpr std::int64_t maxFanCount = 15;

// How the keys of a fan's speeds end.
inline constexpr std::string_view actualSpeed = "Ac";
inline constexpr std::string_view minimumSpeed = "Mn";
inline constexpr std::string_view maximumSpeed = "Mx";

/// The key of a fan's speed, for example "F0Ac": one hexadecimal digit numbers the fan, which is below maxFanCount.
std::string fanKey(std::int64_t index, std::string_view speed);

/// The fans whose actual-speed keys ("F0Ac" to "FEAc") are among `fanKeys`, under those keys. An unreadable speed
/// counts as 0; a fan with a speed that was lost to another program is left out. The SMC must be open.
ThermalDictionary readFans(SMC& smc, const std::vector<std::string_view>& fanKeys, FanObserver* observer = nullptr);

/// "Left Side", "Right Side", then "Fan 2", "Fan 3", …; a single fan is "Left Side" too.
std::string fanTitle(std::int64_t index);

} // namespace orv::Orv_SMCHelper
