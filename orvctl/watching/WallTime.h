#pragma once

#include "orvctl/watching/Moment.h"

#include <string>

namespace orv {

/// RFC 3339 in UTC, to the millisecond: "2026-11-21T22:10:04.123Z".
std::string rfc3339(WallTime time);

} // namespace orv
