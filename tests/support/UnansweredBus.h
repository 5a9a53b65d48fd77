#pragma once

#include "linux/bus/BusHandles.h"

#include <sys/socket.h>

namespace orv {

/// A bus at whose other end nobody listens: messages can be built for it and read back. nullptr when there is none.
inline sd_bus* unansweredBus()
{
    int ends[2];
    sd_bus* bus = nullptr;
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0 || sd_bus_new(&bus) < 0
        || sd_bus_set_fd(bus, ends[0], ends[0]) < 0 || sd_bus_start(bus) < 0)
        return nullptr;
    return bus;
}

/// An empty message of that bus.
inline BusMessage newMessage(sd_bus* bus)
{
    BusMessage message;
    sd_bus_message_new_signal(bus, message.out(), "/", "org.orv.Unanswered", "Reply");
    return message;
}

} // namespace orv
