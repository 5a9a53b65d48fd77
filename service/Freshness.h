#pragma once

#include <chrono>

namespace orv {

/// What is known of the time of some readings. An age may be too great, never too small.
struct Timing {
    std::chrono::microseconds age; // since they were measured
    std::chrono::microseconds interval; // between two refreshes
    bool isAsleep = false; // so that no refresh is due
};

enum class Freshness { fresh, stale, asleep };

/// Readings are stale when they are older than three intervals, unless the computer sleeps.
constexpr Freshness freshness(const Timing& timing)
{
    if (timing.age <= 3 * timing.interval)
        return Freshness::fresh;
    return timing.isAsleep ? Freshness::asleep : Freshness::stale;
}

} // namespace orv
