#include "orvctl/checking/Check.h"
#include "tests/support/ParsedDictionary.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

using namespace orv;

namespace {

constexpr const char* thermalText = R"({
    "TC0P": {"title": "CPU Proximity", "type": "temperature", "unit": "celcius", "value": 45.25},
    "TC0D": {"title": "CPU Die", "type": "temperature", "unit": "celcius", "value": 60.5},
    "TB0T": {"title": "Battery", "type": "temperature", "unit": "celcius", "value": 30.0},
    "F0Ac": {"title": "Left Side", "type": "fans", "unit": "rpm", "value": 1200, "minvalue": 1000, "maxvalue": 5000},
    "F1Ac": {"title": "Right Side", "type": "fans", "unit": "rpm", "value": 0, "minvalue": 1000, "maxvalue": 5000}})";

Dictionary thermal()
{
    auto reply = dictionary(thermalText);
    auto battery = *reply.findAs<Dictionary>("TB0T");
    battery.set("value", std::numeric_limits<double>::infinity());
    reply.set("TB0T", battery);
    return reply;
}

CheckResult checked(const std::vector<std::string>& warnings, const std::vector<std::string>& criticals = {},
    std::optional<Baseline> expected = std::nullopt)
{
    CheckPlan plan{{}, std::move(expected)};
    for (const auto& text : warnings)
        plan.limits.push_back(parseLimit(text, PluginState::warning).value());
    for (const auto& text : criticals)
        plan.limits.push_back(parseLimit(text, PluginState::critical).value());
    return check(thermal(), plan);
}

std::string line(const CheckResult& result)
{
    return pluginLine({result.state, result.text, {}});
}

} // namespace

TEST(Check, LimitsAreThoseThatWereGiven)
{
    const struct {
        std::vector<std::string> warnings, criticals;
        std::string line;
    } cases[] = {
        {{}, {}, "ORV OK - 3 sensors, 2 fans, hottest TB0T (Battery) inf °C\n"},
        {{"TC0P=45.25"}, {}, "ORV OK - 3 sensors, 2 fans, hottest TB0T (Battery) inf °C\n"},
        {{"TC0P=45"}, {}, "ORV WARNING - TC0P (CPU Proximity) 45.2 °C is above 45\n"},
        {{"CPU Die=50", "TC0P=40"}, {"TC0D=60"},
            "ORV CRITICAL - TC0D (CPU Die) 60.5 °C is above 60; TC0P (CPU Proximity) 45.2 °C is above 40\n"},
        {{"cpu=60"}, {"battery=100"},
            "ORV CRITICAL - TB0T (Battery) inf °C is above 100; TC0D (CPU Die) 60.5 °C is above 60\n"},
        {{"F0Ac=1199.5"}, {}, "ORV WARNING - F0Ac (Left Side) 1200 rpm is above 1199.5\n"},
        {{"gpu=1"}, {}, "ORV UNKNOWN - no sensor, fan or group here is called \"gpu\"\n"},
        {{"no | such\n=1"}, {"cpu=1"},
            "ORV UNKNOWN - no sensor, fan or group here is called \"no ? such?\"; TC0D (CPU Die) 60.5 °C is above 1; "
            "TC0P (CPU Proximity) 45.2 °C is above 1\n"},
    };
    for (const auto& [warnings, criticals, expected] : cases)
        EXPECT_EQ(line(checked(warnings, criticals)), expected);
}

TEST(Check, NamesWhatVanishedAndWhereToAsk)
{
    auto expected = baselineOf(thermal());
    EXPECT_EQ(checked({}, {}, expected).state, PluginState::ok);
    expected["TG0D"] = "GPU Die";
    EXPECT_EQ(line(checked({"TC0P=1"}, {}, expected)),
        "ORV CRITICAL - TG0D (GPU Die) vanished, see: orvctl explain TG0D; TC0P (CPU Proximity) 45.2 °C is above 1\n");
    EXPECT_EQ(checked({"gpu=80", "GPU Die=90", "TG0D=90"}, {}, expected).state, PluginState::critical);
    for (int number = 0; number < 9; ++number)
        expected["TG" + std::to_string(number) + "P"] = "";
    const auto many = line(checked({}, {}, expected));
    EXPECT_NE(many.find(" and 5 more vanished, see: orvctl explain TG0D TG0P TG1P TG2P TG3P\n"), std::string::npos)
        << many;
}

TEST(Check, WarnsOfARunningFanBelowItsMinimum)
{
    const std::pair<const char*, PluginState> cases[] = {{"2157", PluginState::ok}, {"2160", PluginState::ok},
        {"2130", PluginState::warning}, {"1", PluginState::warning}, {"0", PluginState::ok}, {"-5", PluginState::ok}};
    for (const auto& [speed, state] : cases) {
        const auto reply =
            std::string(R"({"F0Ac": {"title": "Fan", "type": "fans", "minvalue": 2160, "value": )") + speed + "}}";
        EXPECT_EQ(check(dictionary(reply), {}).state, state) << speed;
    }
}

TEST(Check, WithoutAnyReadingIsUnknownUnlessSomethingWasExpected)
{
    EXPECT_EQ(check({}, {}).state, PluginState::unknown);
    EXPECT_EQ(check({}, {{}, Baseline{{"TC0P", ""}}}).state, PluginState::critical);
}

TEST(Check, PerformanceDataHasTheLowestLimitsAndNothingInfinite)
{
    EXPECT_EQ(checked({"cpu=80", "TC0P=70.5"}, {"TC0D=95", "F0Ac=3000"}).performance,
        "'F0Ac'=1200;;3000;1000;5000 'F1Ac'=0;;;1000;5000 'TC0D'=60.5;80;95 'TC0P'=45.25;70.5");
}

TEST(Limit, IsANameAndADecimalNumber)
{
    for (const char* text : {"", "=", "=5", "TC0P", "TC0P=", "TC0P=x", "TC0P=5x", "TC0P=5,5", "TC0P=nan", "TC0P=inf",
             "TC0P=1e999", "TC0P=0x10", "TC0P= 5", "TC0P=--5"})
        EXPECT_FALSE(parseLimit(text, PluginState::warning)) << text;
    EXPECT_EQ(parseLimit("a=b=-1.5e1", PluginState::warning)->what, "a=b");
    EXPECT_EQ(parseLimit("a=b=-1.5e1", PluginState::warning)->above, -15);
}
