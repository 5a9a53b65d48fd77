#pragma once

#include "orvctl/watching/WatchFormat.h"
#include "service/Watching.h"

#include <functional>
#include <set>
#include <string>
#include <vector>

namespace orv {

/// Where a watch goes to.
struct WatchOutlet {
    std::function<bool(const std::string& text)> write; // false: nobody reads it any more
    std::function<void(const std::string& line)> complain;
    std::function<WallTime()> now; // only ever shown: ages have a clock of their own
};

/// Turns what happens to a service into the outputs of a format.
class Watch final : public ServiceWatcher {
public:
    /// `chosen`: keys and titles of what is to be shown; empty for everything.
    Watch(WatchFormat& format, std::vector<std::string> chosen, WatchOutlet outlet);

    bool repliesArrived(const WatchedReplies& replies) override;
    bool nothingArrived(const Timing& timing) override;
    bool serviceMissing(const std::string& why) override;

private:
    Dictionary chosenOf(const Dictionary& reply);
    void complainOfUnknown();
    bool write(const std::string& text);

    WatchFormat& format;
    const std::vector<std::string> chosen;
    const WatchOutlet outlet;
    std::set<std::string> unknown; // of the chosen, while nothing has shown them
    bool hasComplained = false;
    bool hasBegun = false;
    bool isMissing = false;
    Moment shown;
};

} // namespace orv
