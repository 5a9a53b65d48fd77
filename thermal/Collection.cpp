#include "thermal/Collection.h"

#include "smc/Fans.h"
#include "smc/SMCValueDecoding.h"
#include "thermal/Orv_SMCProfileKeys.h"
#include "thermal/Threshold.h"
#include "thermal/ZpM1IOHIDSensors.h"
#include "thermal/ZpSystemInfo.h"

#include <algorithm>
#include <array>
#include <bitset>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
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
    if (!std::ranges::is_sorted(rows)) // most SMCs list their keys so
        std::ranges::sort(rows);
    const auto repeated = std::ranges::unique(rows);
    rows.erase(repeated.begin(), repeated.end());
    return rows;
}

/// How far a key has come: its number, or what it is stopped by.
struct Reading {
    double degrees = 0;
    SensorOutcome outcome = SensorOutcome::shown;
    SMCValueFault fault = SMCValueFault::none;
};

Reading readTemperature(SMC& smc, SMCVal& val)
{
    if (smc.read(val) != KERN_SUCCESS)
        return {.outcome = SensorOutcome::exchangeFailed};
    const auto decoded = decode(val);
    if (decoded.fault != SMCValueFault::none)
        return {.outcome = SensorOutcome::noNumber, .fault = decoded.fault};
    const bool counts = countsAbove(smcThreshold, decoded.number);
    return {.degrees = decoded.number, .outcome = counts ? SensorOutcome::shown : SensorOutcome::belowThreshold};
}

// Titles that differ mostly do so in their ends.
std::size_t titleHash(std::string_view title)
{
    std::uint64_t end = 0;
    const auto size = std::min(title.size(), sizeof(end));
    std::memcpy(&end, title.data() + title.size() - size, size);
    return (end + title.size()) * 0x9E3779B97F4A7C15 >> 54; // the golden ratio's bits spread them over ten
}

/// Temperatures in the order of reading, beside the fans; a title is given out to one of them.
class TitledTemperatures {
public:
    TitledTemperatures(ThermalDictionary&& fans, std::size_t most)
        : readings(std::move(fans))
    {
        readings.reserve(readings.size() + most);
    }

    SensorOutcome add(std::string&& key, std::string_view title, double degrees)
    {
        // Most titles are seen to be new without a look at the others, which saves a tenth of a refresh's instructions.
        const auto hash = titleHash(title);
        if (hashes.test(hash) && !holder(title).empty())
            return SensorOutcome::titleTaken;
        hashes.set(hash);
        readings.insert_or_assign(std::move(key), TemperatureEntry{std::string(title), degrees});
        return SensorOutcome::shown;
    }

    /// The key that has the title; empty when none has.
    std::string_view holder(std::string_view title) const
    {
        const auto found = std::ranges::find_if(readings, [&](const auto& entry) {
            const auto* temperature = std::get_if<TemperatureEntry>(&entry.second);
            return temperature && temperature->title == title;
        });
        return found == readings.end() ? std::string_view() : found->first;
    }

    ThermalDictionary take() { return std::move(readings); }

private:
    ThermalDictionary readings;
    std::bitset<1024> hashes; // of the temperatures' titles
};

constexpr const char* fallbackKey = "Te05";

bool contains(const std::string& text, std::string_view part)
{
    return text.find(part) != std::string::npos;
}

// On these chips an idle performance core reads 0; an efficiency core's temperature stands in for it.
double coreFallback(SMC& smc, const std::string& processorName)
{
    if (!contains(processorName, "M2") && !contains(processorName, "M4"))
        return 0.0;
    return smc.getValue(fallbackKey).value_or(0.0);
}

void leaveOutOnChip(
    std::vector<const SensorKeyPair*>& sensors, const std::string& processorName, CollectionObserver* observer)
{
    if (!contains(processorName, chipWithoutFirstCores))
        return;
    std::erase_if(sensors, [observer](const auto* sensor) {
        const auto key = keyOf(*sensor);
        if (!key.starts_with("Tp0"))
            return false;
        if (observer)
            observer->sensorDecided({.key = key, .outcome = SensorOutcome::leftOutOnChip, .kind = socKind(key)});
        return true;
    });
}

std::string socTitle(const SensorKeyPair* sensor, SocKind kind, std::int64_t number)
{
    if (kind == SocKind::other)
        return sensor ? std::string(sensor->name) : "Unknown";
    // In front of the digits, which are short: appended to, a title would be allocated twice.
    auto title = std::to_string(number);
    title.insert(0, 1, ' ').insert(0, socKindTitle(kind));
    return title;
}

/// Reads the sensors of the SoC one after the other, and counts them.
class SocReader {
public:
    SocReader(SMC& connection, const std::array<std::int64_t, 4>& mostOfKind, double fallbackDegrees)
        : smc(connection)
        , most(mostOfKind)
        , fallback(fallbackDegrees)
    {
    }

    void read(const SensorKeyPair& sensor, TitledTemperatures& temperatures, CollectionObserver* observer)
    {
        SMCVal val{.key = std::string(sensor.key)};
        const auto kind = socKind(val.key);
        // Counted before anything can skip the key: a sensor's number is its place, so a failing one leaves a gap.
        const auto number = ++counters[static_cast<std::size_t>(kind)];
        const bool isBeyond = number > most[static_cast<std::size_t>(kind)];
        auto reading = isBeyond ? Reading{.outcome = SensorOutcome::beyondCoreCount} : readTemperature(smc, val);
        const bool isStoodIn =
            reading.outcome == SensorOutcome::belowThreshold && countsAbove(0, fallback) && val.key.starts_with("Tp");
        if (isStoodIn)
            reading = {.degrees = fallback};
        std::string title;
        if (reading.outcome == SensorOutcome::shown) {
            title = socTitle(&sensor, kind, number);
            reading.outcome = temperatures.add(std::move(val.key), title, reading.degrees);
        }
        if (observer)
            observer->sensorDecided({.key = sensor.key,
                .outcome = reading.outcome,
                .val = isBeyond ? nullptr : &val,
                .fault = reading.fault,
                .degrees = reading.degrees,
                .from = isStoodIn ? fallbackKey : "",
                .title = title,
                .holder = temperatures.holder(title),
                .kind = kind,
                .number = number});
    }

private:
    SMC& smc;
    const std::array<std::int64_t, 4> most; // of each kind
    const double fallback;
    std::array<std::int64_t, 4> counters{};
};

// Of both; `second` has precedence.
ThermalDictionary merged(ThermalDictionary first, ThermalDictionary second, CollectionObserver* observer)
{
    if (observer) {
        for (const auto& [code, reading] : first) {
            if (std::ranges::binary_search(second, code, std::less<>(), &ThermalDictionary::Entry::first))
                observer->sensorReplaced(code);
        }
    }
    return mergeReadings(std::move(first), std::move(second));
}

} // namespace

CollectionWay collectionWay(const OrvTemperatureFans& profile)
{
    if (!profile.isAppleChip)
        return CollectionWay::intel;
    return profile.isM1() ? CollectionWay::m1 : CollectionWay::appleSilicon;
}

ThermalDictionary collectThermalReadings(
    const OrvTemperatureFans& profile, SMC& smc, HIDEventSystem& hidEventSystem, CollectionObserver* observer)
{
    return collectThermalReadings({profile, ZpSystemInfo::cpuBrandString, observer}, smc, hidEventSystem);
}

ThermalDictionary collectThermalReadings(const CollectionBasis& basis, SMC& smc, HIDEventSystem& hidEventSystem)
{
    const auto& [profile, processorName, observer] = basis;
    switch (collectionWay(profile)) {
    case CollectionWay::intel:
        return collectIntel(smc, observer);
    case CollectionWay::appleSilicon:
        return collectAppleSilicon(
            smc, profile.numberOfEfficiencyCores, profile.numberOfPerformanceCores, processorName(), observer);
    case CollectionWay::m1:
        break;
    }
    auto hid = ZpM1IOHIDSensors::readHIDTemperatures(hidEventSystem, observer);
    return merged(collectM1Common(smc, observer), std::move(hid), observer);
}

ThermalDictionary collectIntel(SMC& smc, CollectionObserver* observer)
{
    return collectWithTable(smc, intelSensorKeys, observer);
}

ThermalDictionary collectM1Common(SMC& smc, CollectionObserver* observer)
{
    return collectWithTable(smc, commonSensorKeys, observer);
}

ThermalDictionary collectAppleSilicon(SMC& smc, std::int64_t efficiencyCores, std::int64_t performanceCores,
    const std::string& processorName, CollectionObserver* observer)
{
    smc.open();
    const auto keys = splitKeys(smc.getAllKeys());
    auto fans = readFans(smc, keys.fans, observer);
    auto common = readTableTemperatures(smc, keys.temperatures, commonSensorKeys, {}, observer);
    auto soc = readSocTemperatures(smc, keys.temperatures, efficiencyCores, performanceCores, processorName, observer);
    auto combined = merged(std::move(soc), std::move(common), observer);
    smc.close();
    return mergeReadings(std::move(combined), std::move(fans));
}

ThermalDictionary collectWithTable(SMC& smc, const SensorTable& table, CollectionObserver* observer)
{
    smc.open();
    const auto keys = splitKeys(smc.getAllKeys());
    // No temperature's key is a fan's.
    auto readings = readTableTemperatures(smc, keys.temperatures, table, readFans(smc, keys.fans, observer), observer);
    smc.close();
    return readings;
}

ThermalDictionary readTableTemperatures(SMC& smc, const std::vector<std::string_view>& temperatureKeys,
    const SensorTable& table, ThermalDictionary fans, CollectionObserver* observer)
{
    if (observer)
        observer->smcTableUsed(table);
    const auto sensors = candidates(temperatureKeys, table);
    TitledTemperatures temperatures(std::move(fans), sensors.size());
    for (const auto* sensor : sensors) {
        SMCVal val{.key = std::string(sensor->key)};
        auto reading = readTemperature(smc, val);
        if (reading.outcome == SensorOutcome::shown)
            reading.outcome = temperatures.add(std::move(val.key), sensor->name, reading.degrees);
        if (observer)
            observer->sensorDecided({.key = sensor->key,
                .outcome = reading.outcome,
                .val = &val,
                .fault = reading.fault,
                .degrees = reading.degrees,
                .title = sensor->name,
                .holder = temperatures.holder(sensor->name)});
    }
    return temperatures.take();
}

ThermalDictionary readSocTemperatures(SMC& smc, const std::vector<std::string_view>& temperatureKeys,
    std::int64_t efficiencyCores, std::int64_t performanceCores, const std::string& processorName,
    CollectionObserver* observer)
{
    if (observer)
        observer->smcTableUsed(socSensorKeys);
    auto sensors = candidates(temperatureKeys, socSensorKeys);
    leaveOutOnChip(sensors, processorName, observer);
    TitledTemperatures temperatures({}, sensors.size());
    // In the order of SocKind.
    SocReader reader(smc, {INT64_MAX, efficiencyCores, performanceCores, INT64_MAX}, coreFallback(smc, processorName));
    for (const auto* sensor : sensors)
        reader.read(*sensor, temperatures, observer);
    return temperatures.take();
}

SocKind socKind(std::string_view key)
{
    if (efficiencyCoreKeys.contains(key))
        return SocKind::efficiencyCore;
    if (performanceCoreKeys.contains(key))
        return SocKind::performanceCore;
    return key.starts_with("Tg") ? SocKind::gpu : SocKind::other;
}

std::string_view socKindTitle(SocKind kind)
{
    constexpr std::array<std::string_view, 4> titles{"", "Core Efficiency", "Core Performance", "GPU"};
    return titles[static_cast<std::size_t>(kind)];
}

std::string socSensorName(
    const std::string& key, std::int64_t efficiencyIndex, std::int64_t performanceIndex, std::int64_t gpuIndex)
{
    const auto kind = socKind(key);
    const std::array<std::int64_t, 4> numbers{0, efficiencyIndex, performanceIndex, gpuIndex};
    return socTitle(socSensorKeys.find(key), kind, numbers[static_cast<std::size_t>(kind)]);
}

} // namespace orv::Orv_SMCHelper
