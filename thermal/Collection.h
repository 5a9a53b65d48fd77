#pragma once

#include "platform/HIDEventSystem.h"
#include "readings/Readings.h"
#include "smc/SMC.h"
#include "thermal/KeyedTable.h"
#include "thermal/OrvTemperatureFans.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace orv::Orv_SMCHelper {

/// All temperatures and fans of this machine, collected in the way that its profile calls for.
ThermalDictionary collectThermalReadings(const OrvTemperatureFans& profile, SMC& smc, HIDEventSystem& hidEventSystem);

/// One whole collection each: open the SMC, read fans and temperatures, close it. Never two at once.
ThermalDictionary collectIntel(SMC& smc);
ThermalDictionary collectM1Common(SMC& smc);
ThermalDictionary collectAppleSilicon(SMC& smc, std::int64_t efficiencyCores, std::int64_t performanceCores);

/// The collection behind collectIntel and collectM1Common.
ThermalDictionary collectWithTable(SMC& smc, const SensorTable& table);

/// The temperatures above 10 degrees of the keys that the table names. Of several keys with one title the first in
/// ascending order of bytes is kept.
ThermalDictionary readTableTemperatures(
    SMC& smc, const std::vector<std::string_view>& temperatureKeys, const SensorTable& table);

/// The same for the system on a chip, where cores and GPU sensors are titled by counting, and no more cores are read
/// than the machine has.
ThermalDictionary readSocTemperatures(SMC& smc, const std::vector<std::string_view>& temperatureKeys,
    std::int64_t efficiencyCores, std::int64_t performanceCores);

/// The title of an SoC sensor, given the numbers that its kind has reached.
std::string socSensorName(
    const std::string& key, std::int64_t efficiencyIndex, std::int64_t performanceIndex, std::int64_t gpuIndex);

} // namespace orv::Orv_SMCHelper
