#pragma once

#include "orvctl/views/Terminal.h"
#include "readings/Value.h"

#include <string>

namespace orv {

/// A thermal reply as a table for people: temperatures, then fans, each sorted by title. At most 80 columns wide.
std::string thermalTable(const Dictionary& reply, Colour colour);

/// A Bluetooth reply as a table: devices with their levels, then entries of any other form with what they have.
std::string bluetoothTable(const Dictionary& reply, Colour colour);

} // namespace orv
