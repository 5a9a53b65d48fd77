#pragma once

#include <cstdint>
#include <string_view>

namespace orv {

/// The number at the start of a text, as Foundation's `integerValue` reads it: white space, one sign, ASCII digits up
/// to anything else; clamped to 64 bits, 0 without digits.
std::int64_t integerValue(std::string_view text);

} // namespace orv
