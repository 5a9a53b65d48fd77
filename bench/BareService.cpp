// usage: bench-bare MACHINE_FILE
// The floor of a request: a bare service on the session bus, one thread and one vtable, whose method "Entries" answers
// with the machine's readings, appended by hand. They are collected once, before its name is claimed.

#include "bench/BareNames.h"
#include "bench/support/AppendByHand.h"
#include "linux/bus/BusHandles.h"
#include "simulated/Recording.h"
#include "simulated/SimulatedMac.h"
#include "smc/SMC.h"
#include "thermal/Collection.h"

#include <systemd/sd-bus.h>
#include <systemd/sd-event.h>

#include <cstdio>
#include <string>

using namespace orv;

namespace {

int answer(sd_bus_message* call, void* readings, sd_bus_error*)
{
    BusMessage reply;
    if (const int result = sd_bus_message_new_method_return(call, reply.out()); result < 0)
        return result;
    appendByHand(reply.get(), *static_cast<const ThermalDictionary*>(readings));
    return sd_bus_message_send(reply.get());
}

const sd_bus_vtable methods[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD(bareMethod, "", "a{sa{sv}}", answer, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_VTABLE_END,
};

int serve(ThermalDictionary readings)
{
    sd_event* loop = nullptr;
    sd_bus* bus = nullptr;
    const bool isReady = sd_event_new(&loop) >= 0 && sd_bus_open_user(&bus) >= 0
        && sd_bus_add_object_vtable(bus, nullptr, barePath, bareName, methods, &readings) >= 0
        && sd_bus_attach_event(bus, loop, SD_EVENT_PRIORITY_NORMAL) >= 0 && sd_bus_request_name(bus, bareName, 0) >= 0;
    return isReady ? sd_event_loop(loop) : 1;
}

} // namespace

int main(int argumentCount, char** arguments)
{
    std::string fault = "usage: bench-bare MACHINE_FILE";
    const auto recording = argumentCount == 2 ? Recording::open(arguments[1], fault) : std::nullopt;
    if (!recording)
        return std::fprintf(stderr, "%s\n", fault.c_str()), 2;
    SimulatedMac mac(recording->machine());
    setHardware(mac);
    SMC smc;
    return serve(Orv_SMCHelper::collectIntel(smc));
}
