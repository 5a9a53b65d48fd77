#pragma once

#include "readings/Value.h"

#include <systemd/sd-bus.h>

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace orv {

/// A Bluetooth device, as BlueZ or the kernel knows it.
struct BluetoothDevice {
    std::string address; // six hexadecimal groups separated by ":"
    std::string name;
    bool isConnected = false;
    std::optional<std::uint8_t> percentage; // of its battery, at most 100
};

/// Asks BlueZ; empty without a system bus or without BlueZ, which is not started for it.
std::vector<BluetoothDevice> bluezDevices();

/// Reads the reply to GetManagedObjects.
std::vector<BluetoothDevice> readManagedObjects(sd_bus_message* reply);

/// The classic keyboards and mice whose battery the kernel's HID driver reads; they are connected. /sys is looked up
/// below `root`.
std::vector<BluetoothDevice> hidDevices(const std::string& root);

/// One entry a device: BlueZ's, connected rather than not, with a battery rather than without. The kernel's level
/// stands in where BlueZ has none for a connected device.
std::vector<BluetoothDevice> uniqueDevices(std::vector<BluetoothDevice> bluez, const std::vector<BluetoothDevice>& hid);

/// The devices in the layout of the system profiler's Bluetooth report.
Value profilerReport(const std::vector<BluetoothDevice>& devices);

} // namespace orv
