#pragma once

#include "linux/loop/Clocks.h"
#include "platform/RefreshObserver.h"
#include "platform/Workspace.h"
#include "service/Published.h"

#include <array>
#include <chrono>
#include <cstdint>
#include <functional>

namespace orv {

/// When what a reply holds was measured, at the latest: microseconds of CLOCK_BOOTTIME, 0 for never.
struct RefreshTimes {
    std::uint64_t lastRefresh = 0;
    std::uint64_t lastBluetoothReport = 0;
    std::uint64_t lastWatchFile = 0;
    bool isAsleep = false;

    bool operator==(const RefreshTimes&) const = default;
};

/// Notes when readings are measured. A time that was taken before a reply never lies behind what that reply holds: it
/// is the beginning of a refresh, and is published when the refresh can be seen. Main thread, except for `times`.
class RefreshTimesKeeper final : public RefreshObserver, public SleepWakeObserver {
public:
    using Clock = std::function<std::chrono::nanoseconds()>;
    explicit RefreshTimesKeeper(Clock clock = timeSinceStart);

    /// May be taken on any thread.
    Published<RefreshTimes> times;
    /// Called after each refresh of the readings, and after each change of `isAsleep`.
    std::function<void()> onChange = [] { };

    void refreshBegan(Refreshed what) override;
    void refreshEnded(Refreshed what) override;
    void workspaceDidWakeUp() override { setAsleep(false); }
    void workspaceWillSleep() override { setAsleep(true); }

private:
    void setAsleep(bool isAsleep);
    void publish();

    Clock clock;
    std::array<std::uint64_t, 3> beginnings{}; // of the refresh under way, by what is refreshed
    RefreshTimes noted;
};

} // namespace orv
