#include "orvctl/collecting/SimulatedInspection.h"

#include "orvctl/collecting/SimulatedProfiler.h"
#include "simulated/ManualRunLoop.h"
#include "simulated/SimulatedPlatform.h"

namespace orv {

InspectionAnswer inspectSimulatedMac(const std::string& machinePath, const std::vector<std::string>& wantedKeys)
{
    std::string fault;
    const auto machine = readMachineFile(machinePath, fault);
    if (!machine)
        return {std::nullopt, fault};
    ManualRunLoop runLoop;
    const auto profiler = simulatedProfiler(*machine, machinePath);
    SimulatedPlatform simulation(*machine, "", runLoop, *profiler);
    simulation.bundle.runCompanion(); // no companion is opened: this puts the file there
    return {InspectedMac{inspect({simulation.mac, *profiler, simulation.bundle}, wantedKeys), {}}, {}};
}

} // namespace orv
