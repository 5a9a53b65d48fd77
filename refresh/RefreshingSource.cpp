#include "refresh/RefreshingSource.h"

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
    isUpdating = false;
}

} // namespace orv
