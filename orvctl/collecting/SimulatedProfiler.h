#pragma once

#include "platform/ProcessLauncher.h"
#include "simulated/MachineFile.h"

#include <memory>
#include <string>

namespace orv {

/// Runs a machine file's profiler; `start` returns when it has ended. The machine must outlive it.
std::unique_ptr<ProcessLauncher> simulatedProfiler(const MachineFile& machine, const std::string& machinePath);

} // namespace orv
