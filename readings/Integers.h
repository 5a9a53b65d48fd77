#pragma once

#include <cmath>
#include <cstdint>
#include <optional>

namespace orv {

/// The integer part of a double; nothing when it is not finite or lies outside the signed 64-bit range.
inline std::optional<std::int64_t> integerPart(double number)
{
    constexpr double limit = 9223372036854775808.0; // 2^63, the first value too large
    if (!std::isfinite(number) || number < -limit || number >= limit)
        return std::nullopt;
    return static_cast<std::int64_t>(number);
}

} // namespace orv
