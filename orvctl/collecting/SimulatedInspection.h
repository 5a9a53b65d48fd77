#pragma once

#include "explain/ThisMac.h"
#include "orvctl/collecting/SimulatedClient.h"

#include <string>
#include <vector>

namespace orv {

/// Inspects the Mac of a machine file. Its `watch` counts as the watch file as it stands.
InspectionAnswer inspectSimulatedMac(const SimulatedMoment& moment, const std::vector<std::string>& wantedKeys);

} // namespace orv
