#pragma once

#include "orvctl/views/Terminal.h"
#include "readings/Value.h"

#include <string>

namespace orv {

/// A thermal reply as a table for people: temperatures by group, each headed by its hottest, then fans, in the natural
/// order of their titles. At most 80 columns wide.
std::string thermalTable(const Dictionary& reply, Colour colour);

/// The same without groups: temperatures, then fans, each in the order of their titles' bytes.
std::string flatThermalTable(const Dictionary& reply, Colour colour);

/// A Bluetooth reply as a table: devices with their levels, then entries of any other form with what they have.
std::string bluetoothTable(const Dictionary& reply, Colour colour);

} // namespace orv
