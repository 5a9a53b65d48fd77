#pragma once

#include "readings/Value.h"

#include <optional>
#include <string_view>

namespace orv {

/// Reads one JSON text whose top level is an object or an array; nothing when it cannot be read. Of equal keys in
/// one object the first is kept. tests/json/JSONCases.h lists what every platform's reader accepts.
std::optional<Value> parseJSON(std::string_view bytes);

} // namespace orv
