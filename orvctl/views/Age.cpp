#include "orvctl/views/Age.h"

#include <fmt/core.h>

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace orv {

namespace {

struct AgeUnit {
    std::int64_t seconds;
    std::int64_t from; // of which on it is used: below, its steps would be coarse
    std::string_view name;
};

constexpr std::array<AgeUnit, 4> ageUnits{{
    {86'400, 3LL * 86'400, "days"},
    {3'600, 3LL * 3'600, "h"},
    {60, 120, "min"},
    {1, 0, "s"},
}};

std::string ageLine(std::string_view what, const std::optional<Timing>& timing)
{
    const auto remark = timing ? ageRemark(*timing) : std::string();
    return remark.empty() ? remark : fmt::format("{}: {}.\n", what, remark);
}

} // namespace

std::string ageText(std::chrono::microseconds age)
{
    const std::int64_t seconds = std::chrono::ceil<std::chrono::seconds>(age).count();
    for (const auto& unit : ageUnits) {
        if (seconds >= unit.from)
            return fmt::format("{} {}", (seconds + unit.seconds - 1) / unit.seconds, unit.name);
    }
    return "0 s";
}

std::string ageRemark(const Timing& timing)
{
    const auto state = freshness(timing);
    if (state == Freshness::fresh)
        return {};
    return fmt::format("{}, measured {} ago", state == Freshness::asleep ? "asleep" : "stale", ageText(timing.age));
}

std::string thermalAge(const ServiceTiming& timing)
{
    return ageLine("Readings", timing.readings);
}

// Levels that are delivered no more are taken over by each refresh, which itself may be fresh.
std::string bluetoothAge(const ServiceTiming& timing)
{
    return ageLine("Readings", timing.readings) + ageLine("Levels of devices", timing.bluetoothReport)
        + ageLine("Levels of a watch", timing.watchFile);
}

} // namespace orv
