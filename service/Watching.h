#pragma once

#include "readings/Value.h"
#include "service/Freshness.h"

#include <optional>
#include <string>

namespace orv {

/// Both replies of one time.
struct WatchedReplies {
    Dictionary thermal;
    Dictionary bluetooth;
    std::optional<Timing> timing; // absent where a reply has no time
};

/// Told what happens to a service. Each answer says whether to go on.
class ServiceWatcher {
public:
    virtual ~ServiceWatcher() = default;

    /// After each refresh.
    virtual bool repliesArrived(const WatchedReplies& replies) = 0;
    /// Once in each interval in which none arrived; the timing is that of the last ones.
    virtual bool nothingArrived(const Timing& timing) = 0;
    /// The service does not run, or does not answer; it is waited for.
    virtual bool serviceMissing(const std::string& why) = 0;
};

/// Watches the running service until the watcher has enough, or nobody reads the descriptor `output` any more. One line
/// when it could not go on, otherwise an empty text.
std::string watchService(ServiceWatcher& watcher, int output);

} // namespace orv
