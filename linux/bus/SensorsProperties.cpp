#include "linux/bus/SensorsProperties.h"

#include "bluetooth/OrvBluetoothAppleWatch.h"
#include "bluetooth/OrvBluetoothSysProfile.h"
#include "linux/loop/Clocks.h"

#include <algorithm>
#include <chrono>
#include <string_view>

namespace orv {

namespace {

using std::chrono::microseconds;

constexpr std::uint64_t longestInterval = 86'400'000'000; // a day: the sum of what is said may not overflow

std::uint64_t number(const Dictionary& properties, std::string_view name)
{
    const auto* found = properties.findAs<std::uint64_t>(name);
    return found ? *found : 0;
}

microseconds ageOf(std::uint64_t time)
{
    // A time that lies ahead is none that this clock has told.
    const auto now = static_cast<std::uint64_t>(std::chrono::ceil<microseconds>(timeSinceStart()).count());
    return microseconds(static_cast<microseconds::rep>(now - std::min(now, time)));
}

std::optional<Timing> timing(const Dictionary& properties, std::string_view name, microseconds interval)
{
    const auto time = number(properties, name);
    if (time == 0)
        return std::nullopt;
    const auto* isAsleep = properties.findAs<bool>("Asleep");
    return Timing{ageOf(time), interval, isAsleep && *isAsleep};
}

} // namespace

std::uint64_t lastRefresh(const Dictionary& properties)
{
    return number(properties, "LastRefresh");
}

std::optional<ServiceTiming> serviceTiming(const Dictionary& properties)
{
    using std::chrono::duration_cast;
    const auto interval = std::min(number(properties, "Interval"), longestInterval);
    const auto readings = timing(properties, "LastRefresh", microseconds(interval));
    if (!readings || interval == 0)
        return std::nullopt;
    constexpr auto reports = duration_cast<microseconds>(OrvBluetoothSysProfile::reloadInterval);
    constexpr auto files = duration_cast<microseconds>(OrvBluetoothAppleWatch::reloadInterval);
    return ServiceTiming{
        *readings, timing(properties, "LastBluetoothReport", reports), timing(properties, "LastWatchFile", files)};
}

} // namespace orv
