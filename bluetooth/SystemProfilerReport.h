#pragma once

#include "readings/Readings.h"

#include <string_view>

namespace orv {

/// The battery levels in the JSON report of the system profiler's Bluetooth data type: a connected device's address,
/// in lower case and with "-" for ":", to one to four of "batteryLevel", "batteryLevelCase", "batteryLevelLeft" and
/// "batteryLevelRight" (signed 64-bit integers, as the report states them). Empty when nothing usable is found.
BluetoothBatteryDictionary parseBluetoothReport(std::string_view bytes);

} // namespace orv
