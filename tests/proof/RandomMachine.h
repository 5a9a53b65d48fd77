#pragma once

#include "simulated/MachineFile.h"

#include <cstdint>

namespace orv {

/// A machine of a kind that may well never be built: keys, types, sizes, services, reports and watch files as they
/// come. Every seed has its own.
MachineFile randomMachine(std::uint64_t seed);

} // namespace orv
