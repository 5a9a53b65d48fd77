#pragma once

#include "platform/Owned.h"

#include <systemd/sd-bus.h>

#include <sys/socket.h>

namespace orv {

struct BusMessageTraits {
    using Handle = sd_bus_message*;
    static constexpr Handle none = nullptr;
    static void release(Handle handle) { sd_bus_message_unref(handle); }
};

/// A bus at whose other end nobody listens: messages can be built for it, which is all that is measured.
inline sd_bus* unansweredBus()
{
    int ends[2];
    sd_bus* bus = nullptr;
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0 || sd_bus_new(&bus) < 0
        || sd_bus_set_fd(bus, ends[0], ends[0]) < 0 || sd_bus_start(bus) < 0)
        return nullptr;
    return bus;
}

inline Owned<BusMessageTraits> newMessage(sd_bus* bus)
{
    Owned<BusMessageTraits> message;
    sd_bus_message_new_signal(bus, message.out(), "/", "org.orv.Measured", "Reply");
    return message;
}

} // namespace orv
