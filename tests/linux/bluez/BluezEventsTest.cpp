#include "linux/bluez/BluezEvents.h"

#include "linux/bluez/BluezNames.h"
#include "linux/loop/EventRunLoop.h"
#include "tests/support/FakeSystemBus.h"
#include "tests/support/UnansweredBus.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <string_view>

namespace orv {

namespace {

using Truth = std::optional<bool>; // of a property that is there

/// The properties of an object, among which two may be.
void appendProperties(sd_bus_message* message, Truth connected, Truth paired)
{
    sd_bus_message_open_container(message, 'a', "{sv}");
    sd_bus_message_append(message, "{sv}", "RSSI", "n", -40);
    if (connected)
        sd_bus_message_append(message, "{sv}", "Connected", "b", *connected ? 1 : 0);
    if (paired)
        sd_bus_message_append(message, "{sv}", "Paired", "b", *paired ? 1 : 0);
    sd_bus_message_close_container(message);
}

void appendInterface(sd_bus_message* message, const char* name, Truth connected, Truth paired)
{
    sd_bus_message_open_container(message, 'e', "sa{sv}");
    sd_bus_message_append(message, "s", name);
    appendProperties(message, connected, paired);
    sd_bus_message_close_container(message);
}

struct Row {
    Truth connected;
    Truth paired;
    bool changeConnects; // when these properties changed; the others when a device has them that was added
    bool changePairs;
    bool additionConnects;
    bool additionPairs;
};

constexpr Row rows[]{{{}, {}, false, false, false, false}, {true, {}, true, false, true, false},
    {false, {}, false, false, false, false}, {{}, true, false, true, false, true},
    {{}, false, false, true, false, false}, {true, true, true, true, true, true}};

TEST(BluezEventsTest, OnlyAConnectionOrAPairingCounts)
{
    const BusConnection bus(unansweredBus());
    for (const auto& row : rows) {
        const auto changed = newMessage(bus.get());
        sd_bus_message_append(changed.get(), "s", bluezDevice);
        appendProperties(changed.get(), row.connected, row.paired);
        sd_bus_message_append(changed.get(), "as", 0);
        ASSERT_GE(sd_bus_message_seal(changed.get(), 1, 0), 0);
        const auto change = changedProperties(changed.get());
        EXPECT_EQ(change.isConnected, row.changeConnects) << &row - rows;
        EXPECT_EQ(change.isPairingChanged, row.changePairs) << &row - rows;
        for (const char* interface : {"org.bluez.Adapter1", bluezDevice, bluezBattery}) {
            const auto added = newMessage(bus.get());
            sd_bus_message_append(added.get(), "o", "/org/bluez/hci0/one");
            sd_bus_message_open_container(added.get(), 'a', "{sa{sv}}");
            appendInterface(added.get(), interface, row.connected, row.paired);
            sd_bus_message_close_container(added.get());
            ASSERT_GE(sd_bus_message_seal(added.get(), 1, 0), 0);
            const auto addition = addedInterfaces(added.get());
            const bool isDevice = interface == bluezDevice;
            EXPECT_EQ(addition.isConnected, interface == bluezBattery || (isDevice && row.additionConnects))
                << interface << &row - rows;
            EXPECT_EQ(addition.isPairingChanged, isDevice && row.additionPairs) << interface << &row - rows;
        }
    }
}

TEST(BluezEventsTest, AreHeardFromTheBus)
{
    FakeSystemBus fakeBus;
    EventRunLoop runLoop;
    SystemBus systemBus(runLoop.event());
    BluezEvents events(systemBus);
    std::string told;
    events.observe([&] { told += "connected "; }, [&] { told += "paired "; });
    const auto settle = [&] {
        while (sd_event_run(runLoop.event(), 0) > 0 || fakeBus.process())
            continue;
    };
    for (settle(); !fakeBus.calls.empty(); settle())
        fakeBus.answer();
    struct Case {
        const char* interface;
        const char* member;
        const char* subject; // of which it tells
        const char* expected;
    };
    const Case cases[]{{"org.freedesktop.DBus.Properties", "PropertiesChanged", bluezDevice, "connected paired "},
        {"org.freedesktop.DBus.Properties", "PropertiesChanged", "org.bluez.Adapter1", ""},
        {"org.freedesktop.DBus.ObjectManager", "InterfacesAdded", bluezDevice, "connected paired "},
        {"org.freedesktop.DBus.ObjectManager", "InterfacesAdded", bluezBattery, "connected "},
        {"org.freedesktop.DBus.ObjectManager", "InterfacesRemoved", bluezDevice, ""},
        {"org.freedesktop.DBus", "NameOwnerChanged", bluezService, "connected "},
        {"org.freedesktop.DBus", "NameOwnerChanged", "org.other", ""}};
    for (const auto& [interface, member, subject, expected] : cases) {
        const bool isOfBus = interface == std::string_view("org.freedesktop.DBus");
        const bool isChange = member == std::string_view("PropertiesChanged");
        const auto signal = fakeBus.newSignal(isOfBus ? "org.freedesktop.DBus" : bluezService,
            isOfBus ? "/org/freedesktop/DBus" : "/org/bluez/hci0/one", interface, member);
        if (isOfBus) {
            sd_bus_message_append(signal.get(), "sss", subject, "", ":1.5");
        } else if (isChange) {
            sd_bus_message_append(signal.get(), "s", subject);
            appendProperties(signal.get(), true, true);
            sd_bus_message_append(signal.get(), "as", 0);
        } else {
            sd_bus_message_append(signal.get(), "o", "/org/bluez/hci0/one");
            sd_bus_message_open_container(signal.get(), 'a', "{sa{sv}}");
            appendInterface(signal.get(), subject, true, true);
            sd_bus_message_close_container(signal.get());
        }
        told.clear();
        fakeBus.send(signal);
        settle();
        EXPECT_EQ(told, expected) << member << " of " << subject;
    }
}

} // namespace

} // namespace orv
