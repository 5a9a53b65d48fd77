#include "linux/bus/BusFault.h"

#include <cerrno>
#include <cstring>

namespace orv {

std::string noSessionBus(int error)
{
    // What sd-bus answers when nothing says where the bus is.
    if (error == -ENOMEDIUM)
        return "no session bus: neither DBUS_SESSION_BUS_ADDRESS nor XDG_RUNTIME_DIR is set (su and sudo do not set "
               "them)";
    return std::string("no session bus: ") + std::strerror(-error);
}

} // namespace orv
