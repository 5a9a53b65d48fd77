#pragma once

#include "readings/Value.h"

#include <systemd/sd-bus.h>

#include <optional>

namespace orv {

/// The next value of a message that is being read: dictionaries and arrays of any depth, variants by their content.
/// Nothing when the message holds another type, or is not what it says it is.
std::optional<Value> readBusValue(sd_bus_message* message);

} // namespace orv
