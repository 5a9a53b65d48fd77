#include "linux/ProfilerProgram.h"
#include "orvctl/collecting/SimulatedProfiler.h"

namespace orv {

std::unique_ptr<ProcessLauncher> simulatedProfiler(const MachineFile&, const std::string& machinePath)
{
    return std::make_unique<SpawnLauncher>(simulatedProfilerProgram(machinePath));
}

} // namespace orv
