#pragma once

#include <string>

namespace orv {

/// What is told when the computer goes to sleep and wakes. Called on the main thread.
class SleepWakeObserver {
public:
    virtual ~SleepWakeObserver() = default;
    virtual void workspaceDidWakeUp() = 0;
    virtual void workspaceWillSleep() = 0;
};

/// Sleep and wake, and the opening of applications. Main thread only.
class Workspace {
public:
    virtual ~Workspace() = default;

    /// Observers are told in the order of their registration. They are not owned.
    virtual void registerSleepWakeObservers(SleepWakeObserver& observer) = 0;
    virtual void removeSleepWakeObservers(SleepWakeObserver& observer) = 0;

    /// Asks for an application to be opened hidden and without activation; whether that succeeds is not observed.
    virtual void openApplication(const std::string& path) = 0;
};

} // namespace orv
