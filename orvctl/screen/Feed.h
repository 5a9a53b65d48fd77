#pragma once

#include "orvctl/top/Top.h"

#include <chrono>
#include <optional>
#include <string>

namespace orv {

using Clock = std::chrono::steady_clock;

/// Where the live view gets its readings from. Main thread only.
class Feed {
public:
    virtual ~Feed() = default;

    /// Readable when there is something to be taken; below 0 for none.
    virtual int descriptor() const { return -1; }
    /// When there is something to be taken, or shown otherwise, without that; nothing when that never comes.
    virtual std::optional<Clock::time_point> due() const = 0;
    /// Hands over what there is.
    virtual void take(Top& top) = 0;
    virtual void obey(const Command&) { }
    /// The time of its own clock.
    virtual Seconds now() const = 0;
    /// How a reading can be explained: what `orvctl explain` is given beside it.
    virtual std::vector<std::string> explainOptions() const { return {}; }

    /// Why it cannot go on, in one line; empty while it can.
    std::string fault;
};

} // namespace orv
