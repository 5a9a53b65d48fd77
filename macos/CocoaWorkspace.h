#pragma once

#include "platform/Workspace.h"

#include <utility>
#include <vector>

@class OrvSleepWakeTarget;

namespace orv {

/// The shared workspace.
class CocoaWorkspace final : public Workspace {
public:
    void registerSleepWakeObservers(SleepWakeObserver& observer) override;
    void removeSleepWakeObservers(SleepWakeObserver& observer) override;
    void openApplication(const std::string& path) override;

private:
    // The notification center keeps no observer.
    std::vector<std::pair<SleepWakeObserver*, OrvSleepWakeTarget*>> targets;
};

} // namespace orv
