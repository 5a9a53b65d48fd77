#pragma once

#include "platform/SleepWakeObservers.h"
#include "platform/Workspace.h"

namespace orv {

/// The login session on Linux.
class LoginWorkspace final : public Workspace {
public:
    void registerSleepWakeObservers(SleepWakeObserver& observer) override { observers.add(observer); }
    void removeSleepWakeObservers(SleepWakeObserver& observer) override { observers.remove(observer); }
    void openApplication(const std::string&) override { }

private:
    SleepWakeObservers observers;
};

} // namespace orv
