#pragma once

#include "readings/Value.h"

#include <optional>
#include <string>
#include <string_view>

namespace orv {

/// A JSON text as parseJSON reads it, for a file that a person writes: two equal keys in one object are a fault, and
/// a fault is described in one line.
std::optional<Value> parseStrictJSON(std::string_view bytes, std::string& fault);

} // namespace orv
