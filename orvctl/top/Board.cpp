#include "orvctl/top/Board.h"

#include "orvctl/views/Age.h"

#include <fmt/core.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>

namespace orv {

namespace {

std::string clockText(double seconds)
{
    const auto whole = static_cast<std::int64_t>(std::clamp(seconds, 0.0, 1e12));
    return fmt::format("{}:{:02}:{:02}", whole / 3600, whole / 60 % 60, whole % 60);
}

std::string freshText(const Timing& timing)
{
    // A second that were counted down would cost a drawing, each as much as a refresh.
    if (timing.age < timing.interval + arrivalTime)
        return fmt::format("up to {0} old, next within {0}", ageText(timing.interval));
    return ageText(timing.age) + " old, next is due";
}

} // namespace

std::optional<Timing> Board::timingAt(Seconds now) const
{
    auto then = timing;
    if (then)
        then->age += std::chrono::ceil<std::chrono::microseconds>(std::max(now - heardAt, Seconds::zero()));
    return then;
}

bool Board::isFresh(Seconds now) const
{
    const auto then = timingAt(now);
    return missing.empty() && (!then || freshness(*then) == Freshness::fresh);
}

std::string stateText(const Board& board, Seconds now, bool isFrozen)
{
    if (isFrozen) {
        const auto timing = board.timingAt(now);
        return timing ? fmt::format("frozen, measured {} ago", ageText(timing->age)) : "frozen";
    }
    if (!board.missing.empty())
        return "no service";
    const auto timing = board.timingAt(now);
    if (!timing)
        return {};
    const auto remark = ageRemark(*timing);
    return remark.empty() ? freshText(*timing) : remark;
}

std::string playbackText(const PlaybackState& state)
{
    const bool hasEnded = state.length > 0 && state.position >= state.length;
    auto text = fmt::format("{} {}",
        hasEnded             ? "at the end,"
            : state.isPaused ? "paused at"
                             : "playing",
        clockText(state.position));
    if (state.length > 0)
        text += " of " + clockText(state.length);
    return state.speed == 1 ? text : text + fmt::format(", {:g} times as fast", state.speed);
}

} // namespace orv
