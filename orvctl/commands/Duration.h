#pragma once

#include <optional>
#include <string>

namespace orv {

/// Seconds from a number and "s", "m", "h" or "d" ("90", "5s", "1.5h"); nothing for anything else, or when it is not
/// from 0.1 to 10^9.
std::optional<double> parseDuration(const std::string& text);

} // namespace orv
