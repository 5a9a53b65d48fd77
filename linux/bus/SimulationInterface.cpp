#include "linux/bus/SimulationInterface.h"

#include "linux/bus/BusNames.h"
#include "linux/loop/EventRunLoop.h"
#include "simulated/SimulatedPlatform.h"

#include <memory>
#include <utility>

namespace orv {

namespace {

constexpr int mostWaitingCalls = 1000;

using Call = std::shared_ptr<sd_bus_message>;
using Change = std::function<bool(SimulatedPlatform&)>;

// Whoever cannot be answered any more is gone.
void answer(const Call& call, bool isDone)
{
    if (isDone)
        (void)sd_bus_reply_method_return(call.get(), nullptr);
    else
        (void)sd_bus_reply_method_errorf(
            call.get(), SD_BUS_ERROR_INVALID_ARGS, "no such sensor, or none that can hold this number");
}

// The message stays with the bus thread: the main loop only carries it, and the last reference is dropped there.
int changeSimulation(sd_bus_message* message, void* userdata, Change change)
{
    auto& context = *static_cast<SimulationContext*>(userdata);
    if (context.waitingCalls == mostWaitingCalls)
        return sd_bus_reply_method_errorf(message, SD_BUS_ERROR_LIMITS_EXCEEDED, "too many calls wait already");
    auto* call = new Call(sd_bus_message_ref(message), sd_bus_message_unref);
    ++context.waitingCalls;
    context.mainLoop->post([&context, call, change = std::move(change)] {
        const bool isDone = change(*context.simulation);
        context.busLoop->post([&context, call, isDone] {
            --context.waitingCalls;
            answer(*call, isDone);
            delete call;
        });
    });
    return 1;
}

int sleepMac(sd_bus_message* message, void* userdata, sd_bus_error*)
{
    return changeSimulation(message, userdata, [](SimulatedPlatform& mac) { return mac.workspace.sleep(), true; });
}

int wakeMac(sd_bus_message* message, void* userdata, sd_bus_error*)
{
    return changeSimulation(message, userdata, [](SimulatedPlatform& mac) { return mac.workspace.wake(), true; });
}

int connectBluetoothDevice(sd_bus_message* message, void* userdata, sd_bus_error*)
{
    return changeSimulation(
        message, userdata, [](SimulatedPlatform& mac) { return mac.bluetoothEvents.connectDevice(), true; });
}

int changePairing(sd_bus_message* message, void* userdata, sd_bus_error*)
{
    return changeSimulation(
        message, userdata, [](SimulatedPlatform& mac) { return mac.bluetoothEvents.changePairing(), true; });
}

int setReading(sd_bus_message* message, void* userdata, bool (SimulatedMac::*set)(std::string_view, double))
{
    const char* key = nullptr;
    double number = 0;
    if (const int result = sd_bus_message_read(message, "sd", &key, &number); result < 0)
        return result;
    return changeSimulation(message, userdata,
        [set, key = std::string(key), number](SimulatedPlatform& mac) { return (mac.mac.*set)(key, number); });
}

int setTemperature(sd_bus_message* message, void* userdata, sd_bus_error*)
{
    return setReading(message, userdata, &SimulatedMac::setTemperature);
}

int setFanSpeed(sd_bus_message* message, void* userdata, sd_bus_error*)
{
    return setReading(message, userdata, &SimulatedMac::setFanSpeed);
}

constexpr auto unprivileged = SD_BUS_VTABLE_UNPRIVILEGED;

const sd_bus_vtable simulationMethods[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD("Sleep", "", "", sleepMac, unprivileged),
    SD_BUS_METHOD("Wake", "", "", wakeMac, unprivileged),
    SD_BUS_METHOD("ConnectBluetoothDevice", "", "", connectBluetoothDevice, unprivileged),
    SD_BUS_METHOD("ChangePairing", "", "", changePairing, unprivileged),
    SD_BUS_METHOD_WITH_ARGS(
        "SetTemperature", SD_BUS_ARGS("s", key, "d", degrees), SD_BUS_NO_RESULT, setTemperature, unprivileged),
    SD_BUS_METHOD_WITH_ARGS(
        "SetFanSpeed", SD_BUS_ARGS("s", key, "d", rpm), SD_BUS_NO_RESULT, setFanSpeed, unprivileged),
    SD_BUS_VTABLE_END,
};

} // namespace

int addSimulationInterface(sd_bus* bus, const std::string& path, SimulationContext& context)
{
    return sd_bus_add_object_vtable(bus, nullptr, path.c_str(), simulationInterface, simulationMethods, &context);
}

} // namespace orv
