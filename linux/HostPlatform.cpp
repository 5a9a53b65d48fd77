#include "linux/HostPlatform.h"

#include "linux/SpawnLauncher.h"
#include "linux/loop/EventRunLoop.h"
#include "platform/ProgramPaths.h"
#include "smc/SMC.h"

namespace orv {

namespace {

constexpr Seconds tickInterval{5.0};

} // namespace

HostPlatform::HostPlatform(
    const std::string& root, const std::string& identifier, EventRunLoop& runLoop, SpawnLauncher& launcher)
    : hardware(root, attributes, [] { sharedSMC().forgetKeys(); })
    , systemBus(runLoop.event())
    , workspace(runLoop, launcher, systemBus)
    , bluetoothEvents(systemBus)
    , bundle(identifier, installationPrefix())
    , platform{runLoop, workspace, bluetoothEvents, launcher, bundle, hidEventSystem}
{
    setHardware(hardware);
    // Posted: this way the ticks begin right after the server scheduled its refresh, and share its wake-ups.
    runLoop.post([this, &runLoop] { ticks = runLoop.scheduleRepeating(tickInterval, [this] { tick(); }); });
}

HostPlatform::~HostPlatform() = default;

void HostPlatform::tick()
{
    systemBus.reconnect();
    workspace.checkClocks();
}

} // namespace orv
