#include "orvctl/collecting/SimulatedClient.h"

#include "bluetooth/BluetoothReadings.h"
#include "bluetooth/OrvBluetoothAppleWatch.h"
#include "bluetooth/OrvBluetoothSysProfile.h"
#include "orvctl/collecting/OpenSimulatedMac.h"
#include "service/ValueSink.h"
#include "smc/SMC.h"
#include "thermal/Collection.h"

#include <utility>

namespace orv {

namespace {

BluetoothBatteryDictionary collectBluetoothReadings(RecordedMac& mac)
{
    const auto watch = OrvBluetoothAppleWatch::create(mac.simulation.platform);
    mac.runLoop.advance(OrvBluetoothAppleWatch::companionTime); // at once, on the manual clock
    mac.simulation.bundle.removeContainer(); // at once: however this program ends, no folder is left behind
    const auto monitor = OrvBluetoothSysProfile::create(mac.simulation.platform);
    mac.runLoop.runPending();
    return bluetoothReadings(monitor->systemBlueToothDictionary, watch->systemBlueToothDictionary);
}

void writeCollected(Request request, RecordedMac& mac, ReplySink& sink)
{
    switch (request) {
    case Request::thermal: {
        SMC smc;
        const OrvTemperatureFans profile;
        return writeThermalReply(Orv_SMCHelper::collectThermalReadings(profile, smc, mac.simulation.mac), sink);
    }
    case Request::bluetooth:
        return writeBluetoothReply(collectBluetoothReadings(mac), sink, propertyListLimits);
    }
}

} // namespace

ServiceAnswer askSimulatedMac(Request request, const SimulatedMoment& moment)
{
    std::string fault;
    const auto mac = openSimulatedMac(moment, fault);
    if (!mac)
        return {std::nullopt, fault};
    ValueSink sink;
    writeCollected(request, *mac, sink);
    return {sink.take(), {}};
}

} // namespace orv
