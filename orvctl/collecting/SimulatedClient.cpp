#include "orvctl/collecting/SimulatedClient.h"

#include "bluetooth/BluetoothReadings.h"
#include "bluetooth/OrvBluetoothAppleWatch.h"
#include "bluetooth/OrvBluetoothSysProfile.h"
#include "orvctl/collecting/SimulatedProfiler.h"
#include "service/Replies.h"
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
    if (request == Request::thermal) {
        SMC smc;
        writeThermalReply(Orv_SMCHelper::collectThermalReadings(OrvTemperatureFans(), smc, simulation.mac), sink);
    } else {
        writeBluetoothReply(collectBluetoothReadings(simulation, runLoop), sink, propertyListLimits);
    }
    return {sink.take(), {}};
}

} // namespace orv
