#pragma once

#include "orvctl/plotting/Plot.h"

#include <string>

namespace orv {

/// The plot as a whole SVG 1.1 document, of a size that does not depend on how long it was: a panel for each quantity,
/// with its lines' names beside it. `heading` is what it is of.
std::string plotSVG(const Plot& plot, const std::string& heading);

} // namespace orv
