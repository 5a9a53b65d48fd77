#include "refresh/RefreshingSource.h"

#include "base/MainThread.h"

namespace orv {

RefreshingSource::RefreshingSource(const Platform& platform, Refreshed refreshed)
    : runLoop(platform.runLoop)
    , workspace(platform.workspace)
    , observer(platform.refreshObserver)
    , what(refreshed)
{
}

RefreshingSource::~RefreshingSource()
{
    workspace.removeSleepWakeObservers(*this);
}

void RefreshingSource::updateData()
{
    assertMainThread();
    if (isComputerSleeping || isUpdating)
        return;
    isUpdating = true;
    if (observer)
        observer->refreshBegan(what);
    beginUpdate();
}

void RefreshingSource::workspaceDidWakeUp()
{
    isComputerSleeping = false;
    updateData();
}

void RefreshingSource::workspaceWillSleep()
{
    assertMainThread();
    isComputerSleeping = true;
}

void RefreshingSource::start(Seconds interval)
{
    workspace.registerSleepWakeObservers(*this);
    if (reloadTimer)
        return;
    updateData();
    reloadTimer = runLoop.scheduleRepeating(interval, [this] { updateData(); });
}

void RefreshingSource::finishUpdate()
{
    assertMainThread();
    isUpdating = false;
    if (observer)
        observer->refreshEnded(what);
}

void RefreshingSource::abandonUpdate()
{
    isUpdating = false;
}

} // namespace orv
