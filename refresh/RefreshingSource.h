#pragma once

#include "platform/Platform.h"
#include "platform/RefreshObserver.h"
#include "platform/RunLoop.h"
#include "platform/Workspace.h"

#include <memory>

namespace orv {

/// Something that is refreshed at its start, by a timer and on wake, never while the computer sleeps and never while
/// a refresh is under way. Main thread only.
class RefreshingSource : public SleepWakeObserver {
public:
    bool isComputerSleeping = false;
    bool isUpdating = false;
    std::unique_ptr<Timer> reloadTimer; // never ended while the source lives

    RefreshingSource(const RefreshingSource&) = delete;
    RefreshingSource& operator=(const RefreshingSource&) = delete;
    ~RefreshingSource() override;

    /// Starts one refresh, or returns at once.
    void updateData();
    void workspaceDidWakeUp() final;
    void workspaceWillSleep() final;

protected:
    RefreshingSource(const Platform& platform, Refreshed what);

    /// Registers for sleep and wake, refreshes once and schedules the timer; does nothing more when it has a timer.
    void start(Seconds interval);
    /// Ends the refresh that `beginUpdate` began, with something new: at once, later, or never.
    void finishUpdate();
    /// Ends it with nothing new.
    void abandonUpdate();

private:
    virtual void beginUpdate() = 0;

    RunLoop& runLoop;
    Workspace& workspace;
    RefreshObserver* const observer;
    const Refreshed what;
};

} // namespace orv
