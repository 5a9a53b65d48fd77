#pragma once

#include "orvctl/watching/Moment.h"

#include <optional>
#include <string>
#include <string_view>

namespace orv {

/// RFC 3339 in UTC, to the millisecond: "2026-11-21T22:10:04.123Z".
std::string rfc3339(WallTime time);

/// The time that a text of RFC 3339 means, the seconds of which may be left out; nothing for any other text.
std::optional<WallTime> parseWallTime(std::string_view text);

} // namespace orv
