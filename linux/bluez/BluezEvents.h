#pragma once

#include "linux/bus/SystemBus.h"
#include "platform/BluetoothEvents.h"

namespace orv {

/// What became of a Bluetooth device, as far as it matters here.
struct DeviceChange {
    bool isConnected = false;
    bool isPairingChanged = false;
};

/// Reads a PropertiesChanged signal of a device.
DeviceChange changedProperties(sd_bus_message* signal);

/// Reads an InterfacesAdded signal. A battery counts as connected: it shows up some time after its device.
DeviceChange addedInterfaces(sd_bus_message* signal);

/// Bluetooth devices on Linux, as BlueZ tells of them. BlueZ itself, or the bus, coming or going counts as a
/// connection: it changes what is connected.
class BluezEvents final : public BluetoothEvents {
public:
    explicit BluezEvents(SystemBus& bus)
        : systemBus(bus)
    {
    }

    void observe(std::function<void()> onConnected, std::function<void()> onPairedChanged) override;

private:
    static int propertiesChanged(sd_bus_message* signal, void* events, sd_bus_error*);
    static int interfacesAdded(sd_bus_message* signal, void* events, sd_bus_error*);
    static int ownerChanged(sd_bus_message* signal, void* events, sd_bus_error*);
    void addMatches(sd_bus* connection);
    void tell(const DeviceChange& change) const;

    SystemBus& systemBus;
    std::function<void()> connected;
    std::function<void()> pairedChanged;
};

} // namespace orv
