#pragma once

#include "linux/bus/SystemBus.h"
#include "linux/loop/Clocks.h"
#include "platform/SleepWakeObservers.h"
#include "platform/Workspace.h"

#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <set>
#include <string>

namespace orv {

class RunLoop;
class SpawnLauncher;

/// Sleep and wake as logind announces them. A sleep that nobody announced shows in the clocks afterwards and counts as
/// one wake.
class LoginWorkspace final : public Workspace {
public:
    using Clock = std::function<std::chrono::nanoseconds()>;
    LoginWorkspace(RunLoop& runLoop, SpawnLauncher& launcher, SystemBus& systemBus, Clock clock = timeAsleep);

    void registerSleepWakeObservers(SleepWakeObserver& observer) override { observers.add(observer); }
    void removeSleepWakeObservers(SleepWakeObserver& observer) override { observers.remove(observer); }

    /// Runs `X.app/X`, or an executable file X.app itself, in the background. One that still runs is not run twice.
    void openApplication(const std::string& path) override;

    /// What logind's PrepareForSleep says: true before the computer sleeps, false after.
    void prepareForSleep(bool isStarting);
    /// Who announced a sleep cannot announce the wake any more: it is taken as having come.
    void announcerVanished();
    /// Looks for a sleep that was not announced. To be called every few seconds.
    void checkClocks();

private:
    struct RunningApplications {
        std::mutex mutex;
        std::set<std::string> paths;
    };

    std::shared_ptr<RunningApplications> enter(const std::string& path) const;
    static int prepareForSleepArrived(sd_bus_message* signal, void* workspace, sd_bus_error*);
    static int loginOwnerChanged(sd_bus_message* signal, void* workspace, sd_bus_error*);
    void addMatches(sd_bus* connection);
    bool hasSleptUnnoticed() const;

    RunLoop& runLoop;
    SpawnLauncher& launcher;
    const Clock clock;
    SleepWakeObservers observers;
    std::chrono::nanoseconds knownTimeAsleep;
    bool isSleepAnnounced = false;
    bool isWakeCounted = false; // by the clocks, before logind told of the same one
    const std::shared_ptr<RunningApplications> runningApplications;
};

} // namespace orv
