#pragma once

#include "explain/Explanation.h"

#include <vector>

namespace orv {

/// Every element of the report's lists of devices: the connected ones first, as the walk meets them, then the others in
/// the report's order. `outcome` becomes how far the walk came.
std::vector<DeviceRow> explainDevices(const Inspection& inspection, Changes changes, ReportOutcome& outcome);

} // namespace orv
