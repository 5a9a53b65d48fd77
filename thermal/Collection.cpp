#include "thermal/Collection.h"

#include "smc/Fans.h"
#include "smc/SMCValueDecoding.h"
#include "thermal/Orv_SMCProfileKeys.h"
#include "thermal/Threshold.h"
#include "thermal/ZpM1IOHIDSensors.h"
#include "thermal/ZpSystemInfo.h"

#include <algorithm>
#include <bitset>
#include <cstddef>
#include <functional>
#include <optional>
#include <string_view>
#include <utility>

namespace orv::Orv_SMCHelper {

using namespace Orv_SMCProfileKeys;

namespace {

// Of the list that the SMC keeps.
struct SplitKeys {
    std::vector<std::string_view> fans;
    std::vector<std::string_view> temperatures;
};

SplitKeys splitKeys(const std::vector<std::string>& keys)
{
    SplitKeys split;
    split.temperatures.reserve(keys.size());
    for (const auto& key : keys) {
        if (key.starts_with('F'))
            split.fans.push_back(key);
        if (key.starts_with('T'))
            split.temperatures.push_back(key);
    }
    return split;
}

// The rows whose keys the SMC lists, in ascending order of the keys' bytes, which decides both who owns a shared title
// and how cores are counted. A table's rows lie in that order, so it is that of their addresses.
std::vector<const SensorKeyPair*> candidates(
    const std::vector<std::string_view>& temperatureKeys, const SensorTable& table)
{
    std::vector<const SensorKeyPair*> rows;
    rows.reserve(temperatureKeys.size());
    for (const auto key : temperatureKeys) {
        if (const auto* row = table.find(key))
            rows.push_back(row);
    }
    std::ranges::sort(rows);
    const auto repeated = std::ranges::unique(rows);
    rows.erase(repeated.begin(), repeated.end());
    return rows;
}

// A failed exchange and a value that is none are the same to a collection.
std::optional<double> readTemperature(SMC& smc, SMCVal& val)
{
    if (smc.read(val) != KERN_SUCCESS)
        return std::nullopt;
    return decodeValue(val);
}

/// Temperatures in the order of reading; a title is given out once.
class TitledTemperatures {
public:
    explicit TitledTemperatures(std::size_t most) { readings.reserve(most); }

    void add(std::string key, std::string_view title, double degrees)
    {
        // Most titles are seen to be new without a look at the others, which saves 8 % of a refresh's instructions.
        const auto hash = std::hash<std::string_view>()(title) % hashes.size();
        if (hashes.test(hash) && isGivenOut(title))
            return;
        hashes.set(hash);
        readings.insert_or_assign(std::move(key), TemperatureEntry{std::string(title), degrees});
    }

    ThermalDictionary take() { return std::move(readings); }

private:
    bool isGivenOut(std::string_view title) const
    {
        return std::ranges::any_of(
            readings, [&](const auto& entry) { return std::get<TemperatureEntry>(entry.second).title == title; });
    }

    ThermalDictionary readings;
    std::bitset<1024> hashes; // of their titles
};

bool brandContains(std::string_view chip)
{
    return ZpSystemInfo::cpuBrandString().find(chip) != std::string::npos;
}

// On these chips an idle performance core reads 0; an efficiency core's temperature stands in for it.
double coreFallback(SMC& smc)
{
    if (!brandContains("M2") && !brandContains("M4"))
        return 0.0;
    return smc.getValue("Te05").value_or(0.0);
}

struct SocCounters {
    std::int64_t efficiency = 0;
    std::int64_t performance = 0;
    std::int64_t gpu = 0;

    void count(const std::string& key)
    {
        efficiency += efficiencyCoreKeys.contains(key);
        performance += performanceCoreKeys.contains(key);
        gpu += key.starts_with("Tg");
    }
};

} // namespace

ThermalDictionary collectThermalReadings(const OrvTemperatureFans& profile, SMC& smc, HIDEventSystem& hidEventSystem)
{
    if (!profile.isAppleChip)
        return collectIntel(smc);
    if (!profile.isM1())
        return collectAppleSilicon(smc, profile.numberOfEfficiencyCores, profile.numberOfPerformanceCores);
    auto hid = ZpM1IOHIDSensors::readHIDTemperatures(hidEventSystem);
    return mergeReadings(collectM1Common(smc), std::move(hid));
}

ThermalDictionary collectIntel(SMC& smc)
{
    return collectWithTable(smc, intelSensorKeys);
}

ThermalDictionary collectM1Common(SMC& smc)
{
    return collectWithTable(smc, commonSensorKeys);
}

ThermalDictionary collectAppleSilicon(SMC& smc, std::int64_t efficiencyCores, std::int64_t performanceCores)
{
    smc.open();
    const auto keys = splitKeys(smc.getAllKeys());
    auto fans = readFans(smc, keys.fans);
    auto common = readTableTemperatures(smc, keys.temperatures, commonSensorKeys);
    auto soc = readSocTemperatures(smc, keys.temperatures, efficiencyCores, performanceCores);
    auto combined = mergeReadings(std::move(soc), std::move(common));
    smc.close();
    return mergeReadings(std::move(combined), std::move(fans));
}

ThermalDictionary collectWithTable(SMC& smc, const SensorTable& table)
{
    smc.open();
    const auto keys = splitKeys(smc.getAllKeys());
    auto fans = readFans(smc, keys.fans);
    auto temperatures = readTableTemperatures(smc, keys.temperatures, table);
    smc.close();
    return mergeReadings(std::move(temperatures), std::move(fans));
}

ThermalDictionary readTableTemperatures(
    SMC& smc, const std::vector<std::string_view>& temperatureKeys, const SensorTable& table)
{
    const auto sensors = candidates(temperatureKeys, table);
    TitledTemperatures temperatures(sensors.size());
    for (const auto* sensor : sensors) {
        SMCVal val{.key = std::string(sensor->key)};
        const auto degrees = readTemperature(smc, val);
        if (!degrees || !countsAbove(smcThreshold, *degrees))
            continue;
        temperatures.add(std::move(val.key), sensor->name, *degrees);
    }
    return temperatures.take();
}

ThermalDictionary readSocTemperatures(SMC& smc, const std::vector<std::string_view>& temperatureKeys,
    std::int64_t efficiencyCores, std::int64_t performanceCores)
{
    auto sensors = candidates(temperatureKeys, socSensorKeys);
    if (brandContains("M4"))
        std::erase_if(sensors, [](const auto* sensor) { return keyOf(*sensor).starts_with("Tp0"); });
    const auto fallback = coreFallback(smc);

    TitledTemperatures temperatures(sensors.size());
    SocCounters counters;
    for (const auto* sensor : sensors) {
        SMCVal val{.key = std::string(sensor->key)};
        const auto& key = val.key;
        // Counted before anything can skip the key: a sensor's number is its place, so a failing one leaves a gap.
        counters.count(key);
        if (efficiencyCoreKeys.contains(key) && counters.efficiency > efficiencyCores)
            continue;
        if (performanceCoreKeys.contains(key) && counters.performance > performanceCores)
            continue;
        auto degrees = readTemperature(smc, val);
        if (!degrees)
            continue;
        if (!countsAbove(smcThreshold, *degrees)) {
            if (!countsAbove(0, fallback) || !key.starts_with("Tp"))
                continue;
            degrees = fallback;
        }
        temperatures.add(key, socSensorName(key, counters.efficiency, counters.performance, counters.gpu), *degrees);
    }
    return temperatures.take();
}

std::string socSensorName(
    const std::string& key, std::int64_t efficiencyIndex, std::int64_t performanceIndex, std::int64_t gpuIndex)
{
    if (efficiencyCoreKeys.contains(key))
        return "Core Efficiency " + std::to_string(efficiencyIndex);
    if (performanceCoreKeys.contains(key))
        return "Core Performance " + std::to_string(performanceIndex);
    if (key.starts_with("Tg"))
        return "GPU " + std::to_string(gpuIndex);
    const auto* sensor = socSensorKeys.find(key);
    return sensor ? std::string(sensor->name) : "Unknown";
}

} // namespace orv::Orv_SMCHelper
