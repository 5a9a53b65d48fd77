#pragma once

#include "orvctl/views/Terminal.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace orv {

/// How wide everything for people is at most.
inline constexpr std::size_t pageWidth = 80;

/// The beginning of a text that takes at most `width` columns, with "…" at its end when something was cut off.
std::string cutTo(std::size_t width, std::string_view text);

/// The text cut to `width` and filled up with blanks.
std::string padded(std::size_t width, std::string_view text);

/// A line of a page.
std::string row(std::string_view text);

/// A line that stands out on a terminal with colour.
std::string heading(std::string_view text, Colour colour);

/// A text broken at blanks into lines of the page's width, each after `indent` blanks.
std::string paragraph(std::size_t indent, std::string_view text);

/// Short texts beside each other, row by row, in as many columns of one width as the page has room for.
std::string columns(std::size_t indent, const std::vector<std::string>& cells);

} // namespace orv
