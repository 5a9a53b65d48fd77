#include "explain/ThisMac.h"
#include "linux/HostObstacles.h"
#include "linux/NoHIDEventSystem.h"
#include "linux/ProfilerProgram.h"
#include "linux/SpawnLauncher.h"
#include "linux/XdgBundle.h"
#include "linux/drivers/HostHardware.h"
#include "platform/ProgramPaths.h"

#include <cstdlib>
#include <utility>

namespace orv {

namespace {

std::string hostRoot()
{
    const char* root = std::getenv("ORV_ROOT");
    return root ? root : "";
}

} // namespace

InspectionAnswer inspectThisMac(const std::vector<std::string>& wantedKeys)
{
    SysfsAttributes attributes;
    HostHardware hardware(hostRoot(), attributes);
    setHardware(hardware);
    NoHIDEventSystem hidEventSystem;
    SpawnLauncher launcher(hostProfilerProgram());
    const XdgBundle bundle(ORV_BUNDLE_IDENTIFIER, installationPrefix());
    auto inspection = inspect({hidEventSystem, launcher, bundle}, wantedKeys);
    return {InspectedMac{std::move(inspection), hostObstacles(hardware)}, {}};
}

std::string modelOfThisMac()
{
    SysfsAttributes attributes;
    const auto model = HostHardware(hostRoot(), attributes).systemValue("hw.model").value_or("");
    return model.substr(0, model.find('\0'));
}

} // namespace orv
