#include "orvctl/collecting/SimulatedInspection.h"

#include "orvctl/collecting/OpenSimulatedMac.h"

namespace orv {

InspectionAnswer inspectSimulatedMac(const SimulatedMoment& moment, const std::vector<std::string>& wantedKeys)
{
    std::string fault;
    const auto mac = openSimulatedMac(moment, fault);
    if (!mac)
        return {std::nullopt, fault};
    auto& simulation = mac->simulation;
    simulation.bundle.runCompanion(); // no companion is opened: this puts the file there
    return {InspectedMac{inspect({simulation.mac, mac->profiler, simulation.bundle}, wantedKeys), {}}, {}};
}

} // namespace orv
