#pragma once

#include "base/MainThread.h"
#include "platform/Workspace.h"

#include <algorithm>
#include <vector>

namespace orv {

/// The list of observers behind a Workspace. Main thread only.
class SleepWakeObservers {
public:
    void add(SleepWakeObserver& observer)
    {
        assertMainThread();
        observers.push_back(&observer);
    }
    void remove(SleepWakeObserver& observer)
    {
        assertMainThread();
        std::erase(observers, &observer);
    }

    void didWake() const { tell(&SleepWakeObserver::workspaceDidWakeUp); }
    void willSleep() const { tell(&SleepWakeObserver::workspaceWillSleep); }

private:
    // A copy is walked: an observer may register or remove another one while it is told.
    void tell(void (SleepWakeObserver::*operation)()) const
    {
        assertMainThread();
        for (auto* observer : std::vector(observers)) {
            if (std::ranges::find(observers, observer) != observers.end())
                (observer->*operation)();
        }
    }

    std::vector<SleepWakeObserver*> observers;
};

} // namespace orv
