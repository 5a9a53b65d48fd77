#pragma once

#include "orvctl/top/History.h"
#include "service/Freshness.h"

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace orv {

/// What readings may take from the refresh to the screen.
constexpr std::chrono::milliseconds arrivalTime{500};

/// Everything that is known at a time.
struct Board {
    std::vector<TopReading> readings;
    History history;
    std::optional<Timing> timing; // as it was at `heardAt`; absent where readings have no time
    Seconds heardAt{};
    std::string missing; // why there is no service; empty while there is one

    /// The same as it is at another time.
    std::optional<Timing> timingAt(Seconds now) const;
    bool isFresh(Seconds now) const;
};

/// A recording as it is being played.
struct PlaybackState {
    double position = 0; // seconds from its beginning
    double length = 0;
    double speed = 1;
    bool isPaused = false;
};

/// How the readings are: "up to 5 s old, next within 5 s", "stale, measured 42 s ago", "no service".
std::string stateText(const Board& board, Seconds now, bool isFrozen);

/// "playing 0:12:35 of 24:00:00, 10 times as fast".
std::string playbackText(const PlaybackState& state);

} // namespace orv
