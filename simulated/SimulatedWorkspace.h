#pragma once

#include "platform/SleepWakeObservers.h"
#include "platform/Workspace.h"

#include <functional>
#include <string>

namespace orv {

/// A workspace that sleeps and wakes when it is told to.
class SimulatedWorkspace final : public Workspace {
public:
    void registerSleepWakeObservers(SleepWakeObserver& observer) override { observers.add(observer); }
    void removeSleepWakeObservers(SleepWakeObserver& observer) override { observers.remove(observer); }
    void openApplication(const std::string& path) override
    {
        if (onOpen)
            onOpen(path);
    }

    void sleep() { observers.willSleep(); }
    void wake() { observers.didWake(); }

    std::function<void(const std::string& path)> onOpen;

private:
    SleepWakeObservers observers;
};

} // namespace orv
