#pragma once

#include "orvctl/watching/Moment.h"

#include <memory>
#include <string>
#include <vector>

namespace orv {

/// One output: what goes to standard output in one piece, and what has to be said beside it.
struct WatchOutput {
    std::string text; // empty: nothing
    std::vector<std::string> remarks = {}; // one line each
};

/// Writes what is watched in one format. What it does not show has no text.
class WatchFormat {
public:
    virtual ~WatchFormat() = default;

    /// Before everything else.
    virtual std::string beginning() { return {}; }
    /// For each refresh.
    virtual WatchOutput refreshed(const Moment& moment) = 0;
    /// For a moment that was shown before, in each interval in which it is no longer fresh.
    virtual std::string aged(const Moment&) { return {}; }
    /// Once, when there is no service any more.
    virtual std::string missing() { return {}; }
};

std::unique_ptr<WatchFormat> makeJSONLines();
std::unique_ptr<WatchFormat> makeCSV();
std::unique_ptr<WatchFormat> makeWaybar();
std::unique_ptr<WatchFormat> makeI3bar();
/// On a terminal, each table takes the place of the last one.
std::unique_ptr<WatchFormat> makeWatchTable();

} // namespace orv
