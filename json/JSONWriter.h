#pragma once

#include "readings/Value.h"

#include <string>

namespace orv {

enum class KeyOrder { asListed, sorted };
enum class Spacing { afterSeparators, none };

/// A value as JSON text. A double is written in the shortest form that reads back equal, always with a point or an
/// exponent (40.0), an infinite one as 1e999; integers have neither; text is UTF-8 as it is.
/// One line.
std::string writeJSON(const Value& value, KeyOrder order, Spacing spacing = Spacing::afterSeparators);

} // namespace orv
