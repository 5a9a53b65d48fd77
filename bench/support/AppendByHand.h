#pragma once

#include "readings/Readings.h"

#include <systemd/sd-bus.h>

namespace orv {

/// Appends a thermal reply's body to a message by the bus library's own calls, one after the other.
void appendByHand(sd_bus_message* message, const ThermalDictionary& readings);

} // namespace orv
