#pragma once

#include "linux/bus/BusHandles.h"

#include <systemd/sd-bus.h>

#include <functional>
#include <string>
#include <vector>

namespace orv {

/// The system bus on the main loop. Nothing waits for it: a bus that is missing, or goes away, is tried again when
/// `reconnect` is called. Main thread only.
class SystemBus {
public:
    /// Connects if it can.
    explicit SystemBus(sd_event* event);

    /// `addMatches` is called with each connection, the present one included; the matches last as long as it does.
    /// `onChange` is called when the connection was lost and when there is one again.
    void watch(std::function<void(sd_bus* connection)> addMatches, std::function<void()> onChange);

    /// Connects when there is no connection.
    void reconnect();

private:
    struct Watcher {
        std::function<void(sd_bus*)> addMatches;
        std::function<void()> onChange;
    };

    bool open();
    void tellOfChange() const;
    static int dropUnvouched(sd_bus_message* message, void*, sd_bus_error*);
    static int answered(sd_bus_message* reply, void* systemBus, sd_bus_error*);
    static int disconnected(sd_bus_message*, void* systemBus, sd_bus_error*);

    sd_event* const event;
    BusConnection bus;
    bool isLost = false; // ended, but still to be released
    bool hasAnswered = false;
    std::vector<Watcher> watchers;
};

/// The match for a name of the bus getting, changing or losing its owner.
std::string ownerChanges(const char* name);

} // namespace orv
