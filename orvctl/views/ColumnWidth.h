#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace orv {

/// How many columns of a terminal a character takes, as the C library knows it for UTF-8 whatever the user's locale is:
/// two for a wide one, none for a combining one. Nothing for one that is not printed.
std::optional<std::size_t> columnsOf(char32_t character);

/// How many columns a text of printed characters takes.
std::size_t columnCount(std::string_view text);

} // namespace orv
