#pragma once

#include "platform/ProcessLauncher.h"
#include "platform/RunLoop.h"
#include "readings/Readings.h"

#include <functional>

namespace orv::ZpBluetoothSysProfile {

/// Runs the system profiler once, in the background, and delivers the battery levels of the connected devices on the
/// main thread, once; never when the profiler cannot be started. Returns at once.
void fetchBatteryLevels(
    RunLoop& runLoop, ProcessLauncher& launcher, std::function<void(BluetoothBatteryDictionary)> completion);

} // namespace orv::ZpBluetoothSysProfile
