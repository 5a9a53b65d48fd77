#include "linux/bluez/BluezEvents.h"

#include "linux/bluez/BluezNames.h"
#include "linux/bus/BusMessageReader.h"

#include <string_view>
#include <utility>

namespace orv {

namespace {

bool isTrue(const Dictionary& properties, std::string_view name)
{
    const auto* truth = properties.findAs<bool>(name);
    return truth && *truth;
}

} // namespace

DeviceChange changedProperties(sd_bus_message* signal)
{
    (void)sd_bus_message_skip(signal, "s"); // else nothing can be read
    const auto properties = readBusDictionary(signal);
    return {.isConnected = isTrue(properties, "Connected"),
        .isPairingChanged = properties.findAs<bool>("Paired") != nullptr};
}

DeviceChange addedInterfaces(sd_bus_message* signal)
{
    (void)sd_bus_message_skip(signal, "o"); // else nothing can be read
    const auto interfaces = readBusDictionary(signal);
    const auto* device = interfaces.findAs<Dictionary>(bluezDevice);
    return {.isConnected = interfaces.find(bluezBattery) || (device && isTrue(*device, "Connected")),
        .isPairingChanged = device && isTrue(*device, "Paired")};
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

// Without memory for a match the two-minute refresh notices what it would have told.
void BluezEvents::addMatches(sd_bus* connection)
{
    constexpr const char* deviceChanges =
        "type='signal',sender='org.bluez',interface='org.freedesktop.DBus.Properties',member='PropertiesChanged',"
        "arg0='org.bluez.Device1'";
    constexpr const char* objects =
        "type='signal',sender='org.bluez',interface='org.freedesktop.DBus.ObjectManager',member='InterfacesAdded'";
    (void)sd_bus_add_match_async(connection, nullptr, deviceChanges, propertiesChanged, nullptr, this);
    (void)sd_bus_add_match_async(connection, nullptr, objects, interfacesAdded, nullptr, this);
    (void)sd_bus_add_match_async(connection, nullptr, ownerChanges(bluezService).c_str(), ownerChanged, nullptr, this);
}

void BluezEvents::tell(const DeviceChange& change) const
{
    if (change.isConnected)
        connected();
    if (change.isPairingChanged)
        pairedChanged();
}

} // namespace orv
