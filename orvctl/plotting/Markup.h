#pragma once

#include <string>
#include <string_view>

namespace orv {

/// Any text as the content of an element or a quoted attribute.
std::string escaped(std::string_view text);

/// A text element whose baseline begins, or by its class is centred or ends, at (x, y).
std::string textAt(double x, double y, std::string_view classes, std::string_view text);

/// A coordinate, to a tenth of a pixel.
std::string pixels(double coordinate);

} // namespace orv
