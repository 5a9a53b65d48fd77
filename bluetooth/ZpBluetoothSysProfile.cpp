#include "bluetooth/ZpBluetoothSysProfile.h"

#include "bluetooth/SystemProfilerReport.h"

#include <string>
#include <utility>
#include <vector>

namespace orv::ZpBluetoothSysProfile {

namespace {

const std::vector<std::string> profilerArguments{"SPBluetoothDataType", "-json"};

} // namespace

void startProfiler(ProcessLauncher& launcher, std::function<void(std::string output)> onExit)
{
    launcher.start(profilerPath, profilerArguments, std::move(onExit));
}

void fetchBatteryLevels(
    RunLoop& runLoop, ProcessLauncher& launcher, std::function<void(BluetoothBatteryDictionary)> completion)
{
    runLoop.postToBackground([&runLoop, &launcher, completion = std::move(completion)] {
        startProfiler(launcher, [&runLoop, completion](const std::string& output) {
            runLoop.post([completion, levels = parseBluetoothReport(output)] { completion(levels); });
        });
    });
}

} // namespace orv::ZpBluetoothSysProfile
