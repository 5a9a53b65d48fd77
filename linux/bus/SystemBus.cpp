#include "linux/bus/SystemBus.h"

#include "base/MainThread.h"

#include <utility>

namespace orv {

SystemBus::SystemBus(sd_event* loopEvent)
    : event(loopEvent)
{
    // Nobody need be told of this one: whoever starts to watch looks around at that time.
    hasAnswered = open();
}

void SystemBus::watch(std::function<void(sd_bus*)> addMatches, std::function<void()> onChange)
{
    assertMainThread();
    watchers.push_back({std::move(addMatches), std::move(onChange)});
    if (bus && !isLost)
        watchers.back().addMatches(bus.get());
}

void SystemBus::reconnect()
{
    assertMainThread();
    if (bus && !isLost)
        return;
    hasAnswered = false;
    if (!open())
        return;
    // Asked first: nothing that a match brings comes from a bus whose end would not be told. What cannot even be asked
    // is a bus that ends, and is tried again.
    (void)sd_bus_call_method_async(bus.get(), nullptr, "org.freedesktop.DBus", "/org/freedesktop/DBus",
        "org.freedesktop.DBus.Peer", "Ping", answered, this, "");
    for (const auto& watcher : watchers)
        watcher.addMatches(bus.get());
}

// Neither opening nor attaching waits: the bus answers the greeting when the loop runs.
bool SystemBus::open()
{
    isLost = false;
    const bool isOpen = sd_bus_open_system(bus.out()) >= 0
        && sd_bus_add_filter(bus.get(), nullptr, dropUnvouched, nullptr) >= 0
        && sd_bus_match_signal_async(bus.get(), nullptr, "org.freedesktop.DBus.Local", "/org/freedesktop/DBus/Local",
               "org.freedesktop.DBus.Local", "Disconnected", disconnected, nullptr, this)
            >= 0
        && sd_bus_attach_event(bus.get(), event, SD_EVENT_PRIORITY_NORMAL) >= 0;
    if (!isOpen)
        bus.reset();
    return isOpen;
}

void SystemBus::tellOfChange() const
{
    assertMainThread();
    for (const auto& watcher : watchers)
        watcher.onChange();
}

// A signal that is sent to us alone passes no match of the bus, so that its sender may be anybody.
int SystemBus::dropUnvouched(sd_bus_message* message, void*, sd_bus_error*)
{
    const bool isSignal = sd_bus_message_is_signal(message, nullptr, nullptr) > 0;
    return isSignal && sd_bus_message_get_destination(message) ? 1 : 0;
}

// A bus that takes connections only to drop them is not ready here, and so is tried again without a word.
int SystemBus::answered(sd_bus_message*, void* systemBus, sd_bus_error*)
{
    auto& self = *static_cast<SystemBus*>(systemBus);
    if (sd_bus_is_ready(self.bus.get()) <= 0)
        return 0;
    self.hasAnswered = true;
    self.tellOfChange();
    return 0;
}

// The connection is still at work while it tells of its end, so the next `reconnect` releases it.
int SystemBus::disconnected(sd_bus_message*, void* systemBus, sd_bus_error*)
{
    auto& self = *static_cast<SystemBus*>(systemBus);
    self.isLost = true;
    if (self.hasAnswered)
        self.tellOfChange();
    return 0;
}

std::string ownerChanges(const char* name)
{
    return std::string("type='signal',sender='org.freedesktop.DBus',path='/org/freedesktop/DBus',"
                       "interface='org.freedesktop.DBus',member='NameOwnerChanged',arg0='")
        + name + '\'';
}

} // namespace orv
