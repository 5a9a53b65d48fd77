#pragma once

namespace orv {

inline constexpr double smcThreshold = 10.0; // degrees Celsius
inline constexpr double hidThreshold = 5.0; // lower on purpose

/// Whether a sensor counts at this temperature. Asked in this form and never as "at or below", which a NaN is not
/// either: a reading that is no number does not count.
constexpr bool countsAbove(double threshold, double degrees)
{
    return degrees > threshold;
}

} // namespace orv
