#include "linux/bus/BusService.h"

#include "linux/bus/BusFault.h"
#include "linux/bus/BusMessageSink.h"
#include "linux/bus/BusNames.h"
#include "linux/bus/SimulationInterface.h"
#include "linux/loop/ProgramEnd.h"
#include "service/OrvSMCHelperServer.h"

#include <signal.h>

#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <new>
#include <utility>

namespace orv {

namespace {

constexpr std::chrono::seconds patience{10}; // with the bus itself

// False when memory is short or the message cannot hold the reply.
template <typename WriteReply> bool isBuilt(sd_bus_message* message, WriteReply writeReply)
{
    try {
        BusMessageSink sink(message);
        writeReply(sink);
        return sink.isComplete();
    } catch (const std::bad_alloc&) {
        return false;
    }
}

template <typename WriteReply> int reply(sd_bus_message* call, WriteReply writeReply)
{
    BusMessage message;
    if (const int result = sd_bus_message_new_method_return(call, message.out()); result < 0)
        return result;
    if (isBuilt(message.get(), writeReply))
        return sd_bus_message_send(message.get());
    return sd_bus_reply_method_return(call, "a{sa{sv}}", 0); // what cannot be built is the empty dictionary
}

int terminationArrived(sd_event_source*, const signalfd_siginfo* information, void* termination)
{
    static_cast<Termination*>(termination)->terminate(static_cast<int>(information->ssi_signo));
    return 0;
}

} // namespace

const sd_bus_vtable BusService::requestMethods[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD_WITH_ARGS(methodOf(Request::thermal), SD_BUS_NO_ARGS, SD_BUS_RESULT("a{sa{sv}}", readings),
        answer<Request::thermal>, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD_WITH_ARGS(methodOf(Request::bluetooth), SD_BUS_NO_ARGS, SD_BUS_RESULT("a{sa{sv}}", levels),
        answer<Request::bluetooth>, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_VTABLE_END,
};

BusService::BusService(std::string givenIdentifier, EventRunLoop& givenLoop, RefreshTimesKeeper& times,
    SimulatedPlatform* simulatedPlatform, Termination givenTermination)
    : bundleIdentifier(std::move(givenIdentifier))
    , mainLoop(givenLoop)
    , simulation(simulatedPlatform)
    , termination(std::move(givenTermination))
    , simulationContext{simulatedPlatform, &givenLoop, &busLoop}
    , sensors(times, busLoop)
{
    auto attempt = connection.get_future();
    thread = std::thread([this] { runThread(); });
    connected = attempt.get();
}

BusService::~BusService()
{
    busLoop.exit(0);
    thread.join();
}

void BusService::resume(const OrvSMCHelperServer& helperServer)
{
    busLoop.post([this, &helperServer] {
        server = &helperServer;
        publish();
    });
}

void BusService::runThread()
{
    connecting = busLoop.scheduleRepeating(patience, [this] { lose(-ETIMEDOUT); });
    serveSignals();
    if (const int result = connect(); result < 0)
        lose(result);
    busLoop.run();
    busSource.detach();
    sensors.withdraw();
    bus.reset();
}

void BusService::serveSignals()
{
    for (const int signal : termination.signals) {
        const int result = sd_event_add_signal(busLoop.event(), nullptr, signal, terminationArrived, &termination);
        if (result < 0)
            fail("cannot wait for signals", result);
    }
}

// Nothing here waits for the bus, whatever state that is in.
int BusService::connect()
{
    if (const int result = sd_bus_open_user(bus.out()); result < 0)
        return result;
    const auto microseconds = std::chrono::microseconds(patience).count();
    if (const int result = sd_bus_set_method_call_timeout(bus.get(), static_cast<std::uint64_t>(microseconds));
        result < 0)
        return result;
    if (const int result = sd_bus_match_signal(bus.get(), nullptr, "org.freedesktop.DBus.Local",
            "/org/freedesktop/DBus/Local", "org.freedesktop.DBus.Local", "Disconnected", disconnected, this);
        result < 0)
        return result;
    return busSource.attach(bus.get(), busLoop.event(), [this](int result) { endStep(result); });
}

// The first refresh, which may be slow, begins only when the bus has accepted the connection: a bus gives up on one
// that stays silent meanwhile.
void BusService::endStep(int result)
{
    if (result < 0)
        return lose(result);
    if (!connecting || sd_bus_is_ready(bus.get()) <= 0)
        return;
    connecting.reset();
    connection.set_value(true);
}

void BusService::publish()
{
    if (hasFailed)
        return;
    const auto path = objectPath(bundleIdentifier);
    int result = sd_bus_add_object_vtable(bus.get(), nullptr, path.c_str(), requestInterface, requestMethods, this);
    if (result >= 0)
        result = sensors.publish(bus.get(), path);
    if (result >= 0 && simulation)
        result = addSimulationInterface(bus.get(), path, simulationContext);
    if (result < 0)
        return fail("cannot publish " + path, result);
    if (bundleIdentifier.empty())
        return;
    result = sd_bus_request_name_async(bus.get(), nullptr, bundleIdentifier.c_str(), 0, nameAnswered, this);
    if (result < 0)
        fail("cannot claim the name " + bundleIdentifier, result);
}

void BusService::lose(int error)
{
    if (connecting)
        fail(noSessionBus(error), 0);
    else
        fail("the session bus went away", 0);
}

void BusService::fail(const std::string& what, int error)
{
    if (hasFailed)
        return;
    hasFailed = true;
    tellOfEnd(what.c_str(), error < 0 ? std::strerror(-error) : nullptr);
    if (error == -ENOMEM)
        endAtOnce(); // the bus library stops at what such a failure leaves behind
    mainLoop.exit(1);
    if (!connecting)
        return;
    connecting.reset();
    connection.set_value(false);
}

template <Request request> int BusService::answer(sd_bus_message* call, void* service, sd_bus_error*)
{
    static_assert(std::size(requestMethods) == requests.size() + 2); // between the first row and the last one
    const auto& server = *static_cast<BusService*>(service)->server;
    return reply(call, [&](ReplySink& sink) { writeReply(request, server, sink, messageBusLimits); });
}

int BusService::nameAnswered(sd_bus_message* reply, void* service, sd_bus_error*)
{
    constexpr std::uint32_t primaryOwner = 1; // DBUS_REQUEST_NAME_REPLY_PRIMARY_OWNER
    auto& self = *static_cast<BusService*>(service);
    std::uint32_t outcome = 0;
    if (sd_bus_message_is_method_error(reply, nullptr) > 0)
        self.fail("cannot claim the name " + self.bundleIdentifier, -sd_bus_message_get_errno(reply));
    else if (sd_bus_message_read(reply, "u", &outcome) < 0 || outcome != primaryOwner)
        self.fail("the name " + self.bundleIdentifier
                + " is already taken on the session bus; \"systemctl --user stop orv-smc-helper\" ends "
                  "an installed helper",
            0);
    return 0;
}

int BusService::disconnected(sd_bus_message*, void* service, sd_bus_error*)
{
    static_cast<BusService*>(service)->lose(-ECONNRESET);
    return 0;
}

} // namespace orv
