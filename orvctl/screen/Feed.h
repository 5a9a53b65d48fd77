#pragma once

#include "orvctl/top/Top.h"

#include <chrono>
#include <functional>
#include <optional>
#include <string>

namespace orv {

using Clock = std::chrono::steady_clock;

/// What a feed has to tell.
using News = std::function<void(Top& top)>;

/// Where the live view gets its readings from. One call at a time, besides stop.
class Feed {
public:
    virtual ~Feed() = default;

    /// From now until stop has returned, news may be given to `show` on a thread of the feed's own. It takes a lock.
    virtual void start(std::function<void(const News& news)>) { }
    virtual void stop() { }

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
