#pragma once

#include "linux/loop/EventHandles.h"

#include <systemd/sd-bus.h>

#include <cstdint>
#include <functional>

namespace orv {

/// Runs a connection on an event loop, as sd_bus_attach_event does, except that nothing is read while anything waits
/// to be sent: calls then wait at the bus, where their senders are held to account, and not as replies in here.
class BusSource {
public:
    BusSource() = default;
    BusSource(const BusSource&) = delete;
    BusSource& operator=(const BusSource&) = delete;

    /// Called after each step with its result. A negative error number is the last step.
    using OnStep = std::function<void(int result)>;

    /// Begins; before the bus has accepted the connection, too. The bus must outlive this. Negative error number.
    int attach(sd_bus* connection, sd_event* event, OnStep onStep);
    void detach();

private:
    static int prepare(sd_event_source*, void* source);
    static int ready(sd_event_source*, int, std::uint32_t, void* source);
    static int timeReached(sd_event_source*, std::uint64_t, void* source);

    int listen() const;
    int step();
    bool mustWaitForRoom() const;
    int send() const;

    sd_bus* bus = nullptr;
    OnStep told;
    EventSource input;
    EventSource timer;
};

} // namespace orv
