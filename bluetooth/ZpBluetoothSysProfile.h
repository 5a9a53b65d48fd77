#pragma once

#include "platform/ProcessLauncher.h"
#include "platform/RunLoop.h"
#include "readings/Readings.h"

#include <functional>
#include <string>

namespace orv::ZpBluetoothSysProfile {

/// The system profiler; where there is none, the platform's launcher has something else run for this path.
inline constexpr const char* profilerPath = "/usr/sbin/system_profiler";

/// Starts the system profiler once, as the launcher does: `onExit` is given what it printed.
void startProfiler(ProcessLauncher& launcher, std::function<void(std::string output)> onExit);

/// Runs the system profiler once, in the background, and delivers the battery levels of the connected devices on the
/// main thread, once; never when the profiler cannot be started. Returns at once.
void fetchBatteryLevels(
    RunLoop& runLoop, ProcessLauncher& launcher, std::function<void(BluetoothBatteryDictionary)> completion);

} // namespace orv::ZpBluetoothSysProfile
