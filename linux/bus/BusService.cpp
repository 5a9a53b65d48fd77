#include "linux/bus/BusService.h"

#include "linux/bus/BusMessageSink.h"
#include "linux/bus/BusNames.h"
#include "linux/bus/SimulationInterface.h"
#include "linux/loop/ProgramEnd.h"
#include "service/OrvSMCHelperServer.h"

#include <poll.h>
#include <signal.h>

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <future>
#include <iterator>
#include <new>
#include <utility>

namespace orv {

namespace {

constexpr std::uint64_t mostWaitingMessages = 16; // of the usual size they fit into the socket
constexpr int longestWait = 100; // milliseconds, in which no signal is noticed

// A bus may pass calls on faster than it takes replies, which would pile up here: until they have gone nothing more is
// read, and the calls wait at the bus.
int waitForRoom(sd_bus_message* message, void*, sd_bus_error*)
{
    auto* const bus = sd_bus_message_get_bus(message);
    std::uint64_t waiting = 0;
    if (sd_bus_get_n_queued_write(bus, &waiting) < 0 || waiting < mostWaitingMessages)
        return 0;
    pollfd output{sd_bus_get_fd(bus), POLLOUT, 0};
    if (poll(&output, 1, longestWait) > 0)
        sd_bus_flush(bus);
    return 0;
}

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

int terminationArrived(sd_event_source*, const signalfd_siginfo* information, void* terminate)
{
    const auto& callBack = *static_cast<std::function<void(int)>*>(terminate);
    callBack(static_cast<int>(information->ssi_signo));
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

BusService::BusService(std::string givenIdentifier, EventRunLoop& givenLoop, SimulatedPlatform* simulatedPlatform)
    : bundleIdentifier(std::move(givenIdentifier))
    , mainLoop(givenLoop)
    , simulation(simulatedPlatform)
    , simulationContext{simulatedPlatform, &givenLoop, &busLoop}
{
    std::promise<bool> connection;
    thread =
        std::thread([this, &connection] { runThread([&](bool isConnected) { connection.set_value(isConnected); }); });
    connected = connection.get_future().get();
}

BusService::~BusService()
{
    busLoop.exit(0);
    thread.join();
}

void BusService::resume(const OrvSMCHelperServer& helperServer)
{
    std::promise<void> attempt;
    busLoop.post([this, &helperServer, &attempt] {
        server = &helperServer;
        publish();
        attempt.set_value();
    });
    attempt.get_future().wait();
}

void BusService::onTermination(std::function<void(int signal)> callBack)
{
    busLoop.post([this, callBack = std::move(callBack)] {
        terminate = callBack;
        for (const int signal : {SIGTERM, SIGINT}) {
            const int result = sd_event_add_signal(busLoop.event(), nullptr, signal, terminationArrived, &terminate);
            if (result < 0)
                fail("cannot wait for signals", result);
        }
    });
}

void BusService::runThread(const std::function<void(bool isConnected)>& onConnected)
{
    const int result = connect();
    if (result < 0)
        fail("no session bus", result);
    onConnected(result >= 0);
    if (result >= 0)
        busLoop.run();
    bus.reset();
}

int BusService::connect()
{
    if (const int result = sd_bus_open_user(bus.out()); result < 0)
        return result;
    // Waits for the bus to accept the connection: a bus gives up on one that stays silent during a slow first refresh.
    const char* uniqueName = nullptr;
    if (const int result = sd_bus_get_unique_name(bus.get(), &uniqueName); result < 0)
        return result;
    if (const int result = sd_bus_match_signal(bus.get(), nullptr, "org.freedesktop.DBus.Local",
            "/org/freedesktop/DBus/Local", "org.freedesktop.DBus.Local", "Disconnected", disconnected, this);
        result < 0)
        return result;
    if (const int result = sd_bus_add_filter(bus.get(), nullptr, waitForRoom, nullptr); result < 0)
        return result;
    return sd_bus_attach_event(bus.get(), busLoop.event(), SD_EVENT_PRIORITY_NORMAL);
}

void BusService::publish()
{
    if (hasFailed)
        return;
    const auto path = objectPath(bundleIdentifier);
    int result = sd_bus_add_object_vtable(bus.get(), nullptr, path.c_str(), requestInterface, requestMethods, this);
    if (result >= 0 && simulation)
        result = addSimulationInterface(bus.get(), path, simulationContext);
    if (result < 0)
        return fail("cannot publish " + path, result);
    if (bundleIdentifier.empty())
        return;
    result = sd_bus_request_name(bus.get(), bundleIdentifier.c_str(), 0);
    if (result == -EEXIST)
        return fail("the name " + bundleIdentifier + " is already taken on the session bus", 0);
    if (result < 0)
        fail("cannot claim the name " + bundleIdentifier, result);
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
}

template <Request request> int BusService::answer(sd_bus_message* call, void* service, sd_bus_error*)
{
    static_assert(std::size(requestMethods) == requests.size() + 2); // between the first row and the last one
    const auto& server = *static_cast<BusService*>(service)->server;
    return reply(call, [&](ReplySink& sink) { writeReply(request, server, sink, messageBusLimits); });
}

int BusService::disconnected(sd_bus_message*, void* service, sd_bus_error*)
{
    static_cast<BusService*>(service)->fail("the session bus went away", 0);
    return 0;
}

} // namespace orv
