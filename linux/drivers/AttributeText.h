#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace orv {

/// The number in an attribute's text, which ends with a newline or with the text; nothing when it is not one.
std::optional<std::int64_t> attributeNumber(std::string_view text);

/// The four-character code in an attribute's text. A code that ends in NUL is printed without it, so a shorter text is
/// filled up; nothing for a longer one.
std::optional<std::uint32_t> attributeCode(std::string_view text);

} // namespace orv
