#include "explain/ThisMac.h"
#include "linux/HostObstacles.h"
#include "linux/NoHIDEventSystem.h"
#include "linux/ProfilerProgram.h"
#include "linux/ProgramPaths.h"
#include "linux/SpawnLauncher.h"
#include "linux/XdgBundle.h"
#include "linux/drivers/HostHardware.h"

#include <cstdlib>
#include <utility>

namespace orv {

InspectionAnswer inspectThisMac(const std::vector<std::string>& wantedKeys)
{
    const char* root = std::getenv("ORV_ROOT");
    SysfsAttributes attributes;
    HostHardware hardware(root ? root : "", attributes);
    setHardware(hardware);
    NoHIDEventSystem hidEventSystem;
    SpawnLauncher launcher(hostProfilerProgram());
    const XdgBundle bundle(ORV_BUNDLE_IDENTIFIER, installationPrefix());
    auto inspection = inspect({hidEventSystem, launcher, bundle}, wantedKeys);
    return {InspectedMac{std::move(inspection), hostObstacles(hardware)}, {}};
}

} // namespace orv
