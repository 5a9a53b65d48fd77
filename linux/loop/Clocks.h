#pragma once

#include <chrono>

namespace orv {

/// CLOCK_MONOTONIC: the time since the computer was started, without what it has slept.
std::chrono::nanoseconds timeAwake();

/// CLOCK_BOOTTIME: the same with what it has slept. No setting of a clock moves it.
std::chrono::nanoseconds timeSinceStart();

/// How long the computer has slept since it was started: CLOCK_BOOTTIME less CLOCK_MONOTONIC.
std::chrono::nanoseconds timeAsleep();

} // namespace orv
