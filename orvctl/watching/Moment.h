#pragma once

#include "readings/Value.h"
#include "service/Freshness.h"

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace orv {

using WallTime = std::chrono::system_clock::time_point;

/// What one output shows: the entries of both replies that were chosen, or all of them.
struct Moment {
    WallTime at;
    std::optional<Timing> timing; // absent where a reply has no time
    Dictionary thermal;
    Dictionary bluetooth;
    std::vector<std::string> chosen; // the names given with --only
    bool hasReadings = false; // whether there were any to choose from
};

} // namespace orv
