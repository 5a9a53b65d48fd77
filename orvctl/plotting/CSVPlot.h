#pragma once

#include "orvctl/plotting/Plot.h"
#include "orvctl/plotting/PlotPlan.h"

#include <memory>
#include <string>

namespace orv {

/// A plot of what `watch --format csv` wrote. Nothing when the file cannot be used; `fault` then is one line.
std::unique_ptr<Plot> plotOfCSV(const std::string& path, const PlotPlan& plan, std::string& fault);

} // namespace orv
