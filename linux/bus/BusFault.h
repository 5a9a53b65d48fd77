#pragma once

#include <systemd/sd-bus.h>

#include <string>

namespace orv {

/// What to say when the session bus cannot be reached, by sd-bus's negative error number.
std::string noSessionBus(int error);

/// Why the service did not answer, by what the bus said.
std::string serviceFault(const sd_bus_error& error);

} // namespace orv
