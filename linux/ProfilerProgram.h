#pragma once

#include "linux/SpawnLauncher.h"

#include <map>
#include <string>

namespace orv {

/// What runs for the system profiler's path on this machine.
std::map<std::string, LaunchedProgram> hostProfilerProgram();

/// What runs for it on the simulated Mac of a machine file or recording. `moment` is asked on any thread: which moment
/// of the recording it is, in seconds.
std::map<std::string, LaunchedProgram> simulatedProfilerProgram(
    const std::string& machinePath, std::function<double()> moment);

} // namespace orv
