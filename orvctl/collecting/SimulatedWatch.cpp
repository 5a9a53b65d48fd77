#include "orvctl/collecting/SimulatedWatch.h"

#include "orvctl/collecting/OpenSimulatedMac.h"
#include "orvctl/collecting/ReaderWait.h"
#include "orvctl/collecting/RecordedServer.h"
#include "platform/RefreshObserver.h"
#include "platform/Workspace.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <memory>
#include <utility>

namespace orv {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::duration_cast;
using std::chrono::microseconds;

constexpr auto interval = duration_cast<Clock::duration>(OrvSMCHelperServer::reloadInterval);

std::atomic<SimulatedBundle*> watchedBundle = nullptr;

/// While it lives, the bundle's container is removed when the program is ended.
struct WatchedBundle {
    explicit WatchedBundle(SimulatedBundle& bundle) { watchedBundle = &bundle; }
    ~WatchedBundle() { watchedBundle = nullptr; }
    WatchedBundle(const WatchedBundle&) = delete;
    WatchedBundle& operator=(const WatchedBundle&) = delete;
};

/// When the readings were measured, on the real clock.
class SimulatedTimes final : public RefreshObserver, public SleepWakeObserver {
public:
    /// Told of a wake before what is refreshed then.
    explicit SimulatedTimes(Workspace& observed)
        : workspace(observed)
    {
        workspace.registerSleepWakeObservers(*this);
    }
    ~SimulatedTimes() override { workspace.removeSleepWakeObservers(*this); }
    SimulatedTimes(const SimulatedTimes&) = delete;
    SimulatedTimes& operator=(const SimulatedTimes&) = delete;

    void refreshBegan(Refreshed what) override
    {
        if (what == Refreshed::readings)
            beginning = Clock::now();
    }
    void refreshEnded(Refreshed what) override { isRefreshed = isRefreshed || what == Refreshed::readings; }
    void workspaceDidWakeUp() override { isAsleep = false; }
    void workspaceWillSleep() override { isAsleep = true; }

    Timing timing() const
    {
        return {
            std::chrono::ceil<microseconds>(Clock::now() - beginning), duration_cast<microseconds>(interval), isAsleep};
    }

    bool isRefreshed = false; // since that was last looked at

private:
    Workspace& workspace;
    Clock::time_point beginning;
    bool isAsleep = false;
};

/// A Mac on a manual clock that follows the real one.
class SimulatedWatch {
public:
    explicit SimulatedWatch(RecordedMac& mac)
        : recorded(mac)
        , times(mac.simulation.workspace)
        , server(mac, times)
    {
        recorded.player.begin();
    }

    /// How much time is to have passed when there is next something to look at: an interval's end, or what the
    /// recording says happened within it.
    Clock::duration due() const
    {
        const auto end = (played / interval + 1) * interval;
        const auto step = recorded.player.due();
        return step ? std::min(end, std::chrono::ceil<Clock::duration>(Seconds(*step))) : end;
    }

    /// Lets as much time pass as has passed since the beginning, and tells of it. What was missed, while this program
    /// was stopped, is made up for by one output.
    bool playTo(Clock::duration time, ServiceWatcher& watcher)
    {
        const bool isIntervalOver = time / interval > played / interval;
        played = time;
        recorded.player.playTo(Seconds(time).count(), recorded.runLoop);
        if (!std::exchange(times.isRefreshed, false))
            return !isIntervalOver || watcher.nothingArrived(times.timing());
        const auto thermal = server.thermalReply();
        const auto bluetooth = server.bluetoothReply();
        return watcher.repliesArrived({*thermal.as<Dictionary>(), *bluetooth.as<Dictionary>(), times.timing()});
    }

private:
    RecordedMac& recorded;
    SimulatedTimes times;
    RecordedServer server;
    Clock::duration played{};
};

} // namespace

std::string watchSimulatedMac(const std::string& machinePath, ServiceWatcher& watcher, int output)
{
    std::string fault;
    const auto mac = openSimulatedMac({machinePath}, fault);
    if (!mac)
        return fault;
    const WatchedBundle bundle(mac->simulation.bundle);
    SimulatedWatch watched(*mac);
    const auto beginning = Clock::now();
    for (bool isWanted = watched.playTo({}, watcher); isWanted && waitWhileRead(output, beginning + watched.due());)
        isWanted = watched.playTo(Clock::now() - beginning, watcher);
    return {};
}

void cleanAfterSimulatedMac()
{
    if (auto* bundle = watchedBundle.load())
        bundle->removeContainer();
}

} // namespace orv
