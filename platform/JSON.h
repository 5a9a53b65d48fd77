#pragma once

#include "readings/Value.h"

#include <cstddef>
#include <optional>
#include <string_view>

namespace orv {

/// Reads one JSON text whose top level is an object or an array; nothing when it cannot be read. Of equal keys in
/// one object the first is kept. tests/json/JSONCases.h lists what every platform's reader accepts. A reader that knows
/// where a text stops being JSON stores the byte's place in `faultPosition`.
std::optional<Value> parseJSON(std::string_view bytes, std::optional<std::size_t>* faultPosition = nullptr);

} // namespace orv
