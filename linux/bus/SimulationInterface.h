#pragma once

#include <systemd/sd-bus.h>

#include <string>

namespace orv {

class EventRunLoop;
struct SimulatedPlatform;

/// What the simulated Mac's methods on the bus work on.
struct SimulationContext {
    SimulatedPlatform* simulation;
    EventRunLoop* mainLoop; // where the simulation is changed …
    EventRunLoop* busLoop; // … and where the call is answered
    int waitingCalls = 0; // for the main loop; of the bus thread
};

/// Adds org.orv.SimulatedMac to an object. A call is answered when the main loop has done what it asks for; other
/// calls are answered meanwhile, and those beyond a thousand waiting ones are refused. The context must outlive the
/// bus. Negative error number.
int addSimulationInterface(sd_bus* bus, const std::string& path, SimulationContext& context);

} // namespace orv
