#include "orvctl/collecting/SimulatedClient.h"

#include "bluetooth/BluetoothReadings.h"
#include "bluetooth/OrvBluetoothAppleWatch.h"
#include "bluetooth/OrvBluetoothSysProfile.h"
#include "orvctl/collecting/SimulatedProfiler.h"
#include "service/ValueSink.h"
#include "simulated/ManualRunLoop.h"
#include "simulated/SimulatedPlatform.h"
#include "smc/SMC.h"
#include "thermal/Collection.h"

#include <utility>

namespace orv {

namespace {

// On the manual clock the companion's five seconds pass at once.
constexpr Seconds untilWatchFileIsRead{5.0};

BluetoothBatteryDictionary collectBluetoothReadings(SimulatedPlatform& simulation, ManualRunLoop& runLoop)
{
    const auto watch = OrvBluetoothAppleWatch::create(simulation.platform);
    runLoop.advance(untilWatchFileIsRead);
    simulation.bundle.removeContainer(); // before the profiler runs: however that ends, no folder is left behind
    const auto monitor = OrvBluetoothSysProfile::create(simulation.platform);
    runLoop.runPending();
    return bluetoothReadings(monitor->systemBlueToothDictionary, watch->systemBlueToothDictionary);
}

void writeCollected(Request request, SimulatedPlatform& simulation, ManualRunLoop& runLoop, ReplySink& sink)
{
    switch (request) {
    case Request::thermal: {
        SMC smc;
        const OrvTemperatureFans profile;
        return writeThermalReply(Orv_SMCHelper::collectThermalReadings(profile, smc, simulation.mac), sink);
    }
    case Request::bluetooth:
        return writeBluetoothReply(collectBluetoothReadings(simulation, runLoop), sink, propertyListLimits);
    }
}

} // namespace

ServiceAnswer askSimulatedMac(Request request, const std::string& machinePath)
{
    std::string fault;
    const auto machine = readMachineFile(machinePath, fault);
    if (!machine)
        return {std::nullopt, fault};
    ManualRunLoop runLoop;
    const auto profiler = simulatedProfiler(*machine, machinePath);
    SimulatedPlatform simulation(*machine, "", runLoop, *profiler);
    ValueSink sink;
    writeCollected(request, simulation, runLoop, sink);
    return {sink.take(), {}};
}

} // namespace orv
