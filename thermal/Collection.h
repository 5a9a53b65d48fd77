#pragma once

#include "platform/HIDEventSystem.h"
#include "readings/Readings.h"
#include "smc/SMC.h"
#include "thermal/CollectionObserver.h"
#include "thermal/KeyedTable.h"
#include "thermal/OrvTemperatureFans.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace orv::Orv_SMCHelper {

/// On this chip the sensors whose keys begin with "Tp0" are left out: they are read on every other chip.
inline constexpr std::string_view chipWithoutFirstCores = "M4";

/// The ways of collecting. Which tables each takes, and from where, its collection below tells.
enum class CollectionWay : std::uint8_t { intel, m1, appleSilicon };

CollectionWay collectionWay(const OrvTemperatureFans& profile);

/// What a collection goes by, beside what the hardware answers.
struct CollectionBasis {
    const OrvTemperatureFans& profile;
    std::function<std::string()> processorName; ///< Asked afresh in each collection that needs it.
    CollectionObserver* observer = nullptr; ///< Changes nothing.
};

/// All temperatures and fans of this machine, collected in the way that its profile calls for.
ThermalDictionary collectThermalReadings(const OrvTemperatureFans& profile, SMC& smc, HIDEventSystem& hidEventSystem,
    CollectionObserver* observer = nullptr);
ThermalDictionary collectThermalReadings(const CollectionBasis& basis, SMC& smc, HIDEventSystem& hidEventSystem);

/// One whole collection each: open the SMC, read fans and temperatures, close it. Never two at once.
ThermalDictionary collectIntel(SMC& smc, CollectionObserver* observer = nullptr);
ThermalDictionary collectM1Common(SMC& smc, CollectionObserver* observer = nullptr);
ThermalDictionary collectAppleSilicon(SMC& smc, std::int64_t efficiencyCores, std::int64_t performanceCores,
    const std::string& processorName, CollectionObserver* observer = nullptr);

/// The collection behind collectIntel and collectM1Common.
ThermalDictionary collectWithTable(SMC& smc, const SensorTable& table, CollectionObserver* observer);

/// The temperatures above 10 degrees of the keys that the table names, added to the fans. Of several keys with one
/// title the first in ascending order of bytes is kept.
ThermalDictionary readTableTemperatures(SMC& smc, const std::vector<std::string_view>& temperatureKeys,
    const SensorTable& table, ThermalDictionary fans, CollectionObserver* observer);

/// The temperatures of the system on a chip, where cores and GPU sensors are titled by counting, and no more cores are
/// read than the machine has.
ThermalDictionary readSocTemperatures(SMC& smc, const std::vector<std::string_view>& temperatureKeys,
    std::int64_t efficiencyCores, std::int64_t performanceCores, const std::string& processorName,
    CollectionObserver* observer);

SocKind socKind(std::string_view key);

/// What the titles of a kind begin with, for example "GPU"; empty for sensors that are not counted.
std::string_view socKindTitle(SocKind kind);

/// The title of an SoC sensor, given the numbers that its kind has reached.
std::string socSensorName(
    const std::string& key, std::int64_t efficiencyIndex, std::int64_t performanceIndex, std::int64_t gpuIndex);

} // namespace orv::Orv_SMCHelper
