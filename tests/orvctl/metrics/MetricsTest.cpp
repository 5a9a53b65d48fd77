#include "orvctl/metrics/Metrics.h"
#include "orvctl/metrics/DeviceStandIns.h"
#include "orvctl/metrics/MetricsText.h"
#include "tests/support/ParsedDictionary.h"

#include <gtest/gtest.h>

#include <limits>
#include <set>
#include <string>

using namespace orv;
using namespace std::chrono_literals;

namespace {

constexpr const char* thermal = R"({
    "TC0P": {"title": "CPU Proximity", "type": "temperature", "unit": "celcius", "value": 45.25},
    "F0Ac": {"title": "Left Side", "type": "fans", "unit": "rpm", "value": 1200, "minvalue": 1000, "maxvalue": 5000}})";
constexpr const char* bluetooth = R"({"watch-1": {"batteryLevel": 80.5, "note": "x"},
    "aa-bb-cc-dd-ee-01": {"batteryLevelRight": 41, "batteryLevelLeft": -1, "batteryLevelCase": 255}})";
constexpr std::chrono::system_clock::time_point now(1'700'000'000'000ms);

std::string metrics(const std::optional<ServiceTiming>& timing, DeviceNaming naming = DeviceNaming::keys)
{
    return metricsOf({dictionary(thermal), dictionary(bluetooth), timing, now}, naming);
}

ServiceTiming timing(std::chrono::microseconds readings, std::chrono::microseconds report,
    std::chrono::microseconds watchFile, bool isAsleep = false)
{
    return {{readings, 5s, isAsleep}, Timing{report, 120s, isAsleep}, Timing{watchFile, 40s, isAsleep}};
}

} // namespace

TEST(Metrics, AreGaugesWithTheirUnits)
{
    EXPECT_EQ(metrics(std::nullopt),
        "# HELP orv_build_info The version of the program that wrote this; always 1.\n"
        "# TYPE orv_build_info gauge\n"
        "orv_build_info{version=\"" ORV_VERSION "\"} 1\n"
        "# HELP orv_temperature_celsius Temperature of a sensor.\n"
        "# TYPE orv_temperature_celsius gauge\n"
        "# UNIT orv_temperature_celsius celsius\n"
        "orv_temperature_celsius{key=\"TC0P\",title=\"CPU Proximity\",group=\"cpu\"} 45.25\n"
        "# HELP orv_fan_rpm Speed of a fan in revolutions per minute.\n"
        "# TYPE orv_fan_rpm gauge\n"
        "# UNIT orv_fan_rpm rpm\n"
        "orv_fan_rpm{key=\"F0Ac\",title=\"Left Side\"} 1200\n"
        "# HELP orv_fan_min_rpm The lowest speed at which a fan is meant to run.\n"
        "# TYPE orv_fan_min_rpm gauge\n"
        "# UNIT orv_fan_min_rpm rpm\n"
        "orv_fan_min_rpm{key=\"F0Ac\",title=\"Left Side\"} 1000\n"
        "# HELP orv_fan_max_rpm The highest speed of a fan.\n"
        "# TYPE orv_fan_max_rpm gauge\n"
        "# UNIT orv_fan_max_rpm rpm\n"
        "orv_fan_max_rpm{key=\"F0Ac\",title=\"Left Side\"} 5000\n"
        "# HELP orv_bluetooth_battery_ratio Battery level of a Bluetooth device or a watch, 1 when full.\n"
        "# TYPE orv_bluetooth_battery_ratio gauge\n"
        "# UNIT orv_bluetooth_battery_ratio ratio\n"
        "orv_bluetooth_battery_ratio{device=\"watch-1\",part=\"main\"} 0.805\n"
        "orv_bluetooth_battery_ratio{device=\"aa-bb-cc-dd-ee-01\",part=\"right\"} 0.41\n"
        "# EOF\n");
    EXPECT_EQ(
        metricsWithoutReadings(), metrics(std::nullopt).substr(0, metricsWithoutReadings().size() - 6) + "# EOF\n");
}

TEST(Metrics, LeaveOutWhatIsTooOldAndKeepItsTime)
{
    const struct {
        ServiceTiming timing;
        bool hasTemperatures, hasDevice, hasWatch;
    } cases[] = {
        {timing(1s, 1s, 1s), true, true, true},
        {timing(15s, 360s, 120s), true, true, true},
        {timing(15s + 1us, 1s, 1s), false, false, false},
        {timing(1h, 1s, 1s, true), false, false, false}, // asleep, and as old
        {timing(1s, 361s, 1s), true, false, true},
        {timing(1s, 1s, 121s), true, true, false},
    };
    for (const auto& [times, hasTemperatures, hasDevice, hasWatch] : cases) {
        const auto text = metrics(times);
        const auto has = [&](const char* part) { return text.find(part) != std::string::npos; };
        const auto age = times.readings.age.count();
        EXPECT_EQ(has("orv_temperature_celsius"), hasTemperatures) << age;
        EXPECT_EQ(has("orv_fan_rpm"), hasTemperatures) << age;
        EXPECT_EQ(has("aa-bb"), hasDevice) << age;
        EXPECT_EQ(has("watch-1"), hasWatch) << age;
        EXPECT_TRUE(has("orv_last_refresh_timestamp_seconds{source=\"bluetooth\"} ")) << age;
    }
    EXPECT_NE(metrics(timing(1500ms, 1s, 1s)).find("{source=\"readings\"} 1699999998.5\n"), std::string::npos);
}

TEST(Metrics, TellNoAddress)
{
    EXPECT_EQ(metrics(std::nullopt, DeviceNaming::standIns).find("aa-bb"), std::string::npos);
    EXPECT_EQ(metrics(std::nullopt, DeviceNaming::standIns).find("watch-1"), std::string::npos);
    EXPECT_EQ(metrics(std::nullopt, DeviceNaming::standIns), metrics(std::nullopt, DeviceNaming::standIns));
}

TEST(DeviceStandIns, AreShortAndNoTwoDevicesShareOne)
{
    Dictionary devices;
    for (int number = 0; number < 2000; ++number)
        devices.set("device " + std::to_string(number), Dictionary());
    std::set<std::string> seen;
    for (const auto& [key, standIn] : deviceStandIns(devices)) {
        EXPECT_TRUE(seen.insert(standIn).second) << key;
        EXPECT_LE(standIn.size(), 6u);
    }
}

TEST(MetricsText, LabelsHoldAnything)
{
    constexpr MetricFamily family{"a_ratio", "", "Help."};
    const struct {
        std::string_view value, written;
    } cases[] = {
        {"a \"b\" \\ {c}\nd", "a \\\"b\\\" \\\\ {c}\\nd"},
        {"\xC3\xA9 \xE6\xB1\x89", "\xC3\xA9 \xE6\xB1\x89"},
        {std::string_view("a\0b\rc\x7f", 6),
            "a\xEF\xBF\xBD"
            "b\xEF\xBF\xBD"
            "c\xEF\xBF\xBD"},
        {"\xFF", "\xEF\xBF\xBD"},
    };
    for (const auto& [value, written] : cases) {
        MetricsText text;
        text.add(family, {{"name", value}}, 1);
        EXPECT_NE(text.finish().find("a_ratio{name=\"" + std::string(written) + "\"} 1\n"), std::string::npos) << value;
    }
    MetricsText twice;
    twice.add(family, {{"name", "\x01"}}, 1);
    twice.add(family, {{"name", "\x02"}}, 2);
    EXPECT_EQ(twice.finish().find("} 2"), std::string::npos);
}

TEST(MetricsText, NumbersAreWhatReadersTake)
{
    const std::pair<double, const char*> cases[] = {{40.0, "40"}, {-0.25, "-0.25"}, {1e21, "1e+21"}, {0.1, "0.1"},
        {std::numeric_limits<double>::infinity(), "+Inf"}, {-std::numeric_limits<double>::infinity(), "-Inf"}};
    for (const auto& [number, written] : cases) {
        MetricsText text;
        text.add({"a", "", "Help."}, {}, number);
        EXPECT_EQ(text.finish(), std::string("# HELP a Help.\n# TYPE a gauge\na ") + written + "\n# EOF\n");
    }
}
