#include "refresh/RefreshingSource.h"

#include "base/MainThread.h"

namespace orv {

RefreshingSource::RefreshingSource(RunLoop& givenRunLoop, Workspace& givenWorkspace)
    : runLoop(givenRunLoop)
    , workspace(givenWorkspace)
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
}

} // namespace orv
