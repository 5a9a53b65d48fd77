#include "orvctl/checking/Check.h"

#include "orvctl/checking/PerformanceData.h"
#include "orvctl/views/Printable.h"

#include <fmt/core.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace orv {

namespace {

constexpr std::size_t mostNamed = 5; // of what is wrong
// A fan at its lowest speed is kept there only so well: real ones make 2157 of 2160 a minute, or 1992.5 of 2000.
constexpr double slowFan = 0.99; // of its minimum
constexpr std::array<std::string_view, 4> stateNames{"OK", "WARNING", "CRITICAL", "UNKNOWN"};

struct Problem {
    PluginState state;
    std::string text;
};
using Problems = std::vector<Problem>;

std::string named(const std::string& key, const std::string& title)
{
    return title.empty() ? key : fmt::format("{} ({})", key, title);
}

std::string counted(std::size_t count, std::string_view noun)
{
    return fmt::format("{} {}{}", count, noun, count == 1 ? "" : "s");
}

bool isExpected(const Limit& limit, const CheckPlan& plan)
{
    return plan.expected && std::ranges::any_of(*plan.expected, [&](const auto& sensor) {
        return isMeant(limit, {.key = sensor.first, .title = sensor.second});
    });
}

void addUnknownNames(Problems& problems, const Measurements& measurements, const CheckPlan& plan)
{
    for (const auto& limit : plan.limits) {
        const auto fits = [&](const auto& measurement) { return isMeant(limit, measurement); };
        if (std::ranges::none_of(measurements, fits) && !isExpected(limit, plan))
            problems.push_back(
                {PluginState::unknown, fmt::format("no sensor, fan or group here is called \"{}\"", limit.what)});
    }
}

void addVanished(Problems& problems, const Dictionary& thermal, const Baseline& expected)
{
    std::string names, keys;
    std::size_t count = 0;
    for (const auto& [key, title] : expected) {
        if (thermal.find(key) || ++count > mostNamed)
            continue;
        names += (count == 1 ? "" : ", ") + named(key, title);
        keys += ' ' + key;
    }
    if (count == 0)
        return;
    if (count > mostNamed)
        names += fmt::format(" and {} more", count - mostNamed);
    problems.push_back({PluginState::critical, fmt::format("{} vanished, see: orvctl explain{}", names, keys)});
}

void addExceeded(Problems& problems, const Measurements& measurements, const std::vector<Limit>& limits)
{
    for (const auto& measurement : measurements) {
        const Limit* worst = nullptr;
        for (const auto& limit : limits) {
            if (isMeant(limit, measurement) && measurement.value > limit.above
                && (!worst || limit.state > worst->state))
                worst = &limit;
        }
        if (worst)
            problems.push_back({worst->state,
                fmt::format("{} {} is above {}", named(measurement.key, measurement.title), withUnit(measurement),
                    worst->above)});
    }
}

void addSlowFans(Problems& problems, const Measurements& measurements)
{
    for (const auto& fan : measurements) {
        if (fan.kind == MeasurementKind::fan && fan.value > 0 && fan.value < slowFan * fan.lowest)
            problems.push_back({PluginState::warning,
                fmt::format("{} {} is below its minimum of {}", named(fan.key, fan.title), withUnit(fan), fan.lowest)});
    }
}

std::string summary(const Measurements& measurements)
{
    const auto isFan = [](const auto& measurement) { return measurement.kind == MeasurementKind::fan; };
    const auto fans = static_cast<std::size_t>(std::ranges::count_if(measurements, isFan));
    const Measurement* hottest = nullptr;
    for (const auto& measurement : measurements) {
        if (!isFan(measurement) && (!hottest || measurement.value > hottest->value))
            hottest = &measurement;
    }
    const auto counts = counted(measurements.size() - fans, "sensor") + ", " + counted(fans, "fan");
    return hottest ? fmt::format("{}, hottest {} {}", counts, named(hottest->key, hottest->title), withUnit(*hottest))
                   : counts;
}

std::string joined(Problems problems)
{
    std::ranges::stable_sort(problems, std::ranges::greater(), &Problem::state);
    std::string text;
    for (std::size_t index = 0; index < std::min(problems.size(), mostNamed); ++index)
        text += (text.empty() ? "" : "; ") + problems[index].text;
    return problems.size() > mostNamed ? text + fmt::format("; and {} more", problems.size() - mostNamed) : text;
}

} // namespace

CheckResult check(const Dictionary& thermal, const CheckPlan& plan)
{
    const auto measurements = measurementsOf(thermal);
    Problems problems;
    addUnknownNames(problems, measurements, plan);
    if (plan.expected)
        addVanished(problems, thermal, *plan.expected);
    else if (measurements.empty())
        problems.push_back({PluginState::unknown, "there is no sensor and no fan, see: orvctl explain"});
    addExceeded(problems, measurements, plan.limits);
    addSlowFans(problems, measurements);
    if (problems.empty())
        return {PluginState::ok, summary(measurements), performanceData(measurements, plan.limits)};
    return {std::ranges::max(problems, {}, &Problem::state).state, joined(problems),
        performanceData(measurements, plan.limits)};
}

std::string pluginLine(const CheckResult& result)
{
    auto text = printable(result.text);
    std::ranges::replace(text, '|', '?'); // which begins the performance data
    const auto* separator = result.performance.empty() ? "" : " | ";
    return fmt::format(
        "ORV {} - {}{}{}\n", stateNames[static_cast<std::size_t>(result.state)], text, separator, result.performance);
}

} // namespace orv
