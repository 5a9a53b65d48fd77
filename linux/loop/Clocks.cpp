#include "linux/loop/Clocks.h"

#include <time.h>

namespace orv {

namespace {

std::chrono::nanoseconds read(clockid_t clock)
{
    timespec time{};
    clock_gettime(clock, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

} // namespace

std::chrono::nanoseconds timeAwake()
{
    return read(CLOCK_MONOTONIC);
}

std::chrono::nanoseconds timeSinceStart()
{
    return read(CLOCK_BOOTTIME);
}

std::chrono::nanoseconds timeAsleep()
{
    // In this order, time that passes between the two readings never looks like sleep.
    const auto sinceStart = timeSinceStart();
    return sinceStart - timeAwake();
}

} // namespace orv
