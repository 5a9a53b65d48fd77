#pragma once

namespace orv {

/// Names the machine file for the stand-in of the system profiler.
inline constexpr const char* profilerMachineVariable = "ORV_SIMULATED_MAC";

} // namespace orv
