#pragma once

#include "readings/Readings.h"

#include <utility>

namespace orv {

/// What is reported of devices and watches: every entry of both. Where both know a device, the system profiler's entry
/// stays, whole: it is what the computer itself has just measured, the watch file what a companion once wrote, and a
/// mixture of both would be neither.
inline BluetoothBatteryDictionary bluetoothReadings(
    BluetoothBatteryDictionary systemProfile, BluetoothBatteryDictionary watch)
{
    return mergeReadings(std::move(watch), std::move(systemProfile));
}

} // namespace orv
