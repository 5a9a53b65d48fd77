#pragma once

#include "bluetooth/BluetoothReportObserver.h"
#include "readings/Readings.h"

#include <string>
#include <string_view>

namespace orv {

/// The battery levels in the JSON report of the system profiler's Bluetooth data type: a connected device's address,
/// in lower case and with "-" for ":", to one to four of "batteryLevel", "batteryLevelCase", "batteryLevelLeft" and
/// "batteryLevelRight" (signed 64-bit integers, as the report states them). Empty when nothing usable is found.
/// Of two elements with one address the later one counts, whole.
BluetoothBatteryDictionary parseBluetoothReport(std::string_view bytes, BluetoothReportObserver* observer = nullptr);

/// The same for a report that was read already.
BluetoothBatteryDictionary walkBluetoothReport(const Value& report, BluetoothReportObserver* observer = nullptr);

// What the walk looks for.
inline constexpr std::string_view dataTypeMember = "SPBluetoothDataType";
inline constexpr std::string_view connectedMember = "device_connected";
inline constexpr std::string_view addressProperty = "device_address";

/// The key of the device with an address.
std::string deviceKey(std::string address);
/// Whether a text has the form of an address or of the key made of one: six groups of two hexadecimal digits with a
/// colon or a hyphen between them.
bool isDeviceAddress(std::string_view text);
/// Whether the walk uses a device's property of this name: its address or one of its levels.
bool isUsedProperty(std::string_view name);
/// The levels among a device's properties; those that are no text are passed over.
Dictionary batteryLevels(const Dictionary& properties);

} // namespace orv
