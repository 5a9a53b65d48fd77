#pragma once

#include "explain/Explanation.h"
#include "linux/drivers/HostHardware.h"

#include <vector>

namespace orv {

/// What keeps this computer from showing all that its SMC has, and the command that mends it: a driver that is not
/// loaded, or gives only files; a group that is missing. The hardware's SMC was asked for before.
std::vector<Obstacle> hostObstacles(HostHardware& hardware);

} // namespace orv
