#pragma once

namespace orv {

// BlueZ on the system bus.

inline constexpr const char* bluezService = "org.bluez";
inline constexpr const char* bluezDevice = "org.bluez.Device1";
inline constexpr const char* bluezBattery = "org.bluez.Battery1";

} // namespace orv
