#pragma once

#include <chrono>

namespace orv {

/// How far long work on a stretch of time is: one line of standard error that is rewritten and goes with this object.
/// Nothing where standard error is no terminal.
class Progress {
public:
    explicit Progress(bool isWanted);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// May be called as often as one likes. Seconds.
    void show(double reached, double end);

private:
    using Clock = std::chrono::steady_clock;

    const bool isShown;
    bool hasLine = false;
    Clock::time_point next; // not before
};

} // namespace orv
