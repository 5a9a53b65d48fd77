#pragma once

#include "readings/Value.h"

#include <systemd/sd-bus.h>

#include <optional>

namespace orv {

/// The next value of a message that is being read: dictionaries and arrays of variants of any depth, variants by their
/// content, bytes and 32-bit numbers with a sign as integers, object paths as texts. Null stands for a value of any
/// other type. Nothing at the end of the message, or when it is not what it says it is.
std::optional<Value> readBusValue(sd_bus_message* message);

/// The next value when it is a dictionary, otherwise an empty one.
Dictionary readBusDictionary(sd_bus_message* message);

} // namespace orv
