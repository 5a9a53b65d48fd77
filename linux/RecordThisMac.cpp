#include "linux/HostPlatform.h"
#include "linux/ProfilerProgram.h"
#include "linux/SpawnLauncher.h"
#include "linux/loop/Clocks.h"
#include "linux/loop/EventRunLoop.h"
#include "recording/ThisMac.h"

#include <cstdlib>

namespace orv {

std::string recordThisMac(const std::function<void(const std::string& text)>& write, const RecordingPlan& plan)
{
    const char* root = std::getenv("ORV_ROOT");
    SpawnLauncher launcher(hostProfilerProgram());
    EventRunLoop runLoop;
    HostPlatform host(root ? root : "", ORV_BUNDLE_IDENTIFIER, runLoop, launcher);
    const auto time = [] { return timeAwake() + timeAsleep(); };
    const auto now = [time, beginning = time()] { return Seconds(time() - beginning).count(); };
    RecordingSession session(host.platform, {write, now}, plan, [&runLoop] { runLoop.exit(0); });
    session.begin();
    runLoop.run();
    launcher.stop();
    return session.recorder().summary();
}

} // namespace orv
