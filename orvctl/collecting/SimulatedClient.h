#pragma once

#include "service/Client.h"

#include <optional>
#include <string>
#include <vector>

namespace orv {

/// A machine file or recording, and the moment of it that is meant.
struct SimulatedMoment {
    std::optional<std::string> path;
    double at = 0; // seconds since the recording's beginning
};

/// What the service would answer as the Mac of a machine file or recording, collected once by this process, without a
/// service.
ServiceAnswer askSimulatedMac(Request request, const SimulatedMoment& moment);

/// The same for all requests, in the order of Request.
std::vector<ServiceAnswer> askSimulatedMacForAll(const SimulatedMoment& moment);

} // namespace orv
