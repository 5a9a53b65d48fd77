#pragma once

#include "orvctl/checking/Limit.h"
#include "orvctl/checking/Measurement.h"

#include <string>
#include <vector>

namespace orv {

/// 'TC0P'=45.25;80;95 'F0Ac'=1200;;;1000;5000: what can be plotted, with the lowest limits that were set.
std::string performanceData(const Measurements& measurements, const std::vector<Limit>& limits);

} // namespace orv
