#include "linux/bus/BusFault.h"

#include <cerrno>
#include <cstring>
#include <string_view>

namespace orv {

std::string noSessionBus(int error)
{
    // What sd-bus answers when nothing says where the bus is.
    if (error == -ENOMEDIUM)
        return "no session bus: neither DBUS_SESSION_BUS_ADDRESS nor XDG_RUNTIME_DIR is set, as after su and sudo; log "
               "in "
               "as this user, or put \"dbus-run-session\" in front for a bus of its own";
    return std::string("no session bus: ") + std::strerror(-error) + "; see DBUS_SESSION_BUS_ADDRESS";
}

std::string serviceFault(const sd_bus_error& error)
{
    if (std::string_view(error.name) == SD_BUS_ERROR_SERVICE_UNKNOWN)
        return "nothing on this session bus has that name or starts it; run orv-smc-helper, or install its package";
    return error.message ? error.message : error.name;
}

} // namespace orv
