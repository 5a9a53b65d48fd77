#pragma once

#include "base/Fatal.h"
#include "platform/Platform.h"
#include "simulated/SimulatedBluetoothEvents.h"
#include "simulated/SimulatedBundle.h"
#include "simulated/SimulatedMac.h"
#include "simulated/SimulatedWorkspace.h"

#include <string>

namespace orv {

/// A simulated Mac with everything around it except the run loop and the launcher. Main thread only.
struct SimulatedPlatform {
    /// Puts the Mac behind the IOKit and sysctl calls. A fatal stop leaves no container behind.
    SimulatedPlatform(
        const MachineFile& machine, const std::string& identifier, RunLoop& runLoop, ProcessLauncher& processLauncher)
        : profilerOutput(machine.profilerOutput)
        , mac(machine)
        , bundle(identifier, machine.watchFile)
        , platform{runLoop, workspace, bluetoothEvents, processLauncher, bundle, mac}
    {
        setHardware(mac);
        workspace.onOpen = [this](const std::string&) { bundle.runCompanion(); };
        beforeFatalStop = [this] { bundle.removeContainer(); };
    }
    ~SimulatedPlatform() { beforeFatalStop = nullptr; }
    SimulatedPlatform(const SimulatedPlatform&) = delete;
    SimulatedPlatform& operator=(const SimulatedPlatform&) = delete;

    /// Takes over what a step says is different, and leaves out what happened then.
    void apply(const RecordingStep& step);
    /// Tells what happened.
    void announce(RecordedEvent event);

    std::string profilerOutput; // what the profiler prints now
    SimulatedMac mac;
    SimulatedWorkspace workspace;
    SimulatedBluetoothEvents bluetoothEvents;
    SimulatedBundle bundle;
    Platform platform;
};

} // namespace orv
