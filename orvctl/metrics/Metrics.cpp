#include "orvctl/metrics/Metrics.h"

#include "bluetooth/SystemProfilerReport.h"
#include "orvctl/metrics/DeviceStandIns.h"
#include "orvctl/metrics/MetricsText.h"
#include "orvctl/views/EntryMember.h"
#include "orvctl/views/LevelNames.h"
#include "thermal/SensorGroup.h"

#include <array>
#include <string_view>

namespace orv {

namespace {

constexpr MetricFamily temperatures{"orv_temperature_celsius", "celsius", "Temperature of a sensor."};
constexpr MetricFamily batteries{
    "orv_bluetooth_battery_ratio", "ratio", "Battery level of a Bluetooth device or a watch, 1 when full."};
constexpr MetricFamily refreshes{"orv_last_refresh_timestamp_seconds", "seconds",
    "When the latest readings of a source were measured, in Unix time."};
constexpr MetricFamily build{"orv_build_info", "", "The version of the program that wrote this; always 1."};

struct FanFamily {
    std::string_view member; // of a fan's entry
    MetricFamily family;
};
constexpr std::array<FanFamily, 3> fanFamilies{{
    {"value", {"orv_fan_rpm", "rpm", "Speed of a fan in revolutions per minute."}},
    {"minvalue", {"orv_fan_min_rpm", "rpm", "The lowest speed at which a fan is meant to run."}},
    {"maxvalue", {"orv_fan_max_rpm", "rpm", "The highest speed of a fan."}},
}};

struct RefreshSource {
    std::string_view label;
    std::optional<Timing> (*timing)(const ServiceTiming& timing);
};
constexpr std::array<RefreshSource, 3> refreshSources{{
    {"readings", [](const ServiceTiming& timing) { return std::optional(timing.readings); }},
    {"bluetooth", [](const ServiceTiming& timing) { return timing.bluetoothReport; }},
    {"watch", [](const ServiceTiming& timing) { return timing.watchFile; }},
}};

bool isFresh(const std::optional<Timing>& timing)
{
    return !timing || freshness(*timing) == Freshness::fresh;
}

void addTemperatures(MetricsText& metrics, const Dictionary& thermal)
{
    for (const auto& [key, value] : thermal) {
        const auto* entry = value.as<Dictionary>();
        const auto* degrees = entry ? entry->findAs<double>("value") : nullptr;
        if (!degrees || textMember(*entry, "type") != "temperature")
            continue;
        const std::string title(textMember(*entry, "title"));
        metrics.add(temperatures, {{"key", key}, {"title", title}, {"group", identifierOf(groupOf(title))}}, *degrees);
    }
}

void addFans(MetricsText& metrics, const Dictionary& thermal, const FanFamily& row)
{
    for (const auto& [key, value] : thermal) {
        const auto* entry = value.as<Dictionary>();
        const auto* speed = entry ? entry->findAs<std::int64_t>(row.member) : nullptr;
        if (speed && textMember(*entry, "type") == "fans")
            metrics.add(row.family, {{"key", key}, {"title", std::string(textMember(*entry, "title"))}},
                static_cast<double>(*speed));
    }
}

/// A level that is a percentage.
std::optional<double> level(const Value* value)
{
    const auto* integer = value ? value->as<std::int64_t>() : nullptr;
    const auto* real = value ? value->as<double>() : nullptr;
    const double percent = integer ? static_cast<double>(*integer) : real ? *real : -1;
    return percent >= 0 && percent <= 100 ? std::optional(percent) : std::nullopt;
}

// Both sources stand in one reply, in which only a device of the report is called by an address.
const std::optional<Timing>& timingOf(std::string_view device, const ServiceTiming& timing)
{
    return isDeviceAddress(device) ? timing.bluetoothReport : timing.watchFile;
}

void addBatteries(MetricsText& metrics, const MeasuredMac& mac, DeviceNaming naming)
{
    const auto standIns = deviceStandIns(mac.bluetooth);
    for (const auto& [key, value] : mac.bluetooth) {
        const auto* entry = value.as<Dictionary>();
        if (!entry || (mac.timing && !isFresh(timingOf(key, *mac.timing))))
            continue;
        const auto& device = naming == DeviceNaming::keys ? key : standIns.at(key);
        for (const auto& name : levelNames) {
            if (const auto percent = level(entry->find(name.key)))
                metrics.add(batteries, {{"device", device}, {"part", name.part}}, *percent / 100);
        }
    }
}

void addRefreshes(MetricsText& metrics, const MeasuredMac& mac)
{
    using namespace std::chrono;
    for (const auto& source : refreshSources) {
        const auto timing = mac.timing ? source.timing(*mac.timing) : std::nullopt;
        if (!timing)
            continue;
        const auto time = floor<milliseconds>(mac.now - timing->age).time_since_epoch();
        metrics.add(refreshes, {{"source", source.label}}, static_cast<double>(time.count()) / 1000);
    }
}

void addBuild(MetricsText& metrics)
{
    metrics.add(build, {{"version", ORV_VERSION}}, 1);
}

} // namespace

std::string metricsOf(const MeasuredMac& mac, DeviceNaming naming)
{
    MetricsText metrics;
    addBuild(metrics);
    addRefreshes(metrics, mac);
    // A refresh takes levels over that are delivered no more, and none stays fresh without one.
    if (!mac.timing || isFresh(mac.timing->readings)) {
        addTemperatures(metrics, mac.thermal);
        for (const auto& row : fanFamilies)
            addFans(metrics, mac.thermal, row);
        addBatteries(metrics, mac, naming);
    }
    return metrics.finish();
}

std::string metricsWithoutReadings()
{
    MetricsText metrics;
    addBuild(metrics);
    return metrics.finish();
}

} // namespace orv
