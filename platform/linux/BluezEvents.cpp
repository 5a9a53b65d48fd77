#include "platform/linux/BluezEvents.h"

#include "platform/linux/BluezNames.h"
#include "platform/linux/BusReading.h"

#include <optional>
#include <utility>

namespace orv {

namespace {

struct DeviceProperties {
    std::optional<bool> connected;
    std::optional<bool> paired;
};

DeviceProperties readProperties(sd_bus_message* message)
{
    DeviceProperties properties;
    readDictionary(message, "{sv}", [&] {
        const auto name = readText(message);
        if (name == "Connected")
            properties.connected = readBoolean(message);
        else if (name == "Paired")
            properties.paired = readBoolean(message);
        else
            sd_bus_message_skip(message, "v");
    });
    return properties;
}

} // namespace

DeviceChange changedProperties(sd_bus_message* signal)
{
    sd_bus_message_skip(signal, "s");
    const auto properties = readProperties(signal);
    return {.isConnected = properties.connected == true, .isPairingChanged = properties.paired.has_value()};
}

DeviceChange addedInterfaces(sd_bus_message* signal)
{
    DeviceChange change;
    sd_bus_message_skip(signal, "o");
    readDictionary(signal, "{sa{sv}}", [&] {
        const auto interface = readText(signal);
        const auto properties = readProperties(signal);
        const bool isDevice = interface == bluezDevice;
        change.isConnected |= interface == bluezBattery || (isDevice && properties.connected == true);
        change.isPairingChanged |= isDevice && properties.paired == true;
    });
    return change;
}

void BluezEvents::observe(std::function<void()> onConnected, std::function<void()> onPairedChanged)
{
    connected = std::move(onConnected);
    pairedChanged = std::move(onPairedChanged);
    systemBus.watch([this](sd_bus* connection) { addMatches(connection); }, [this] { connected(); });
}

int BluezEvents::propertiesChanged(sd_bus_message* signal, void* events, sd_bus_error*)
{
    static_cast<BluezEvents*>(events)->tell(changedProperties(signal));
    return 0;
}

int BluezEvents::interfacesAdded(sd_bus_message* signal, void* events, sd_bus_error*)
{
    static_cast<BluezEvents*>(events)->tell(addedInterfaces(signal));
    return 0;
}

int BluezEvents::ownerChanged(sd_bus_message*, void* events, sd_bus_error*)
{
    static_cast<BluezEvents*>(events)->connected();
    return 0;
}

void BluezEvents::addMatches(sd_bus* connection)
{
    constexpr const char* deviceChanges =
        "type='signal',sender='org.bluez',interface='org.freedesktop.DBus.Properties',member='PropertiesChanged',"
        "arg0='org.bluez.Device1'";
    constexpr const char* objects =
        "type='signal',sender='org.bluez',interface='org.freedesktop.DBus.ObjectManager',member='InterfacesAdded'";
    sd_bus_add_match_async(connection, nullptr, deviceChanges, propertiesChanged, nullptr, this);
    sd_bus_add_match_async(connection, nullptr, objects, interfacesAdded, nullptr, this);
    sd_bus_add_match_async(connection, nullptr, ownerChanges(bluezService).c_str(), ownerChanged, nullptr, this);
}

void BluezEvents::tell(const DeviceChange& change) const
{
    if (change.isConnected)
        connected();
    if (change.isPairingChanged)
        pairedChanged();
}

} // namespace orv
