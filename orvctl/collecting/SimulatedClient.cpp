#include "orvctl/collecting/SimulatedClient.h"

#include "bluetooth/BluetoothReadings.h"
#include "bluetooth/OrvBluetoothAppleWatch.h"
#include "bluetooth/OrvBluetoothSysProfile.h"
#include "orvctl/collecting/OpenSimulatedMac.h"
#include "service/ValueSink.h"
#include "smc/SMC.h"
#include "thermal/Collection.h"

#include <span>
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

std::vector<ServiceAnswer> ask(std::span<const RequestRow> asked, const SimulatedMoment& moment)
{
    std::string fault;
    const auto mac = openSimulatedMac(moment, fault);
    if (!mac)
        return std::vector<ServiceAnswer>(asked.size(), {std::nullopt, fault});
    std::vector<ServiceAnswer> answers;
    for (const auto& row : asked) {
        ValueSink sink;
        writeCollected(row.request, *mac, sink);
        answers.push_back({sink.take(), {}});
    }
    return answers;
}

} // namespace

ServiceAnswer askSimulatedMac(Request request, const SimulatedMoment& moment)
{
    return ask(std::span(&requests[static_cast<std::size_t>(request)], 1), moment).front();
}

std::vector<ServiceAnswer> askSimulatedMacForAll(const SimulatedMoment& moment)
{
    return ask(requests, moment);
}

} // namespace orv
