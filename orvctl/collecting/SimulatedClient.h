#pragma once

#include "service/Client.h"

#include <string>

namespace orv {

/// What the service would answer as the Mac of a machine file, collected once by this process, without a service.
ServiceAnswer askSimulatedMac(Request request, const std::string& machinePath);

} // namespace orv
