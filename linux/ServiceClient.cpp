#include "linux/bus/BusFault.h"
#include "linux/bus/BusHandles.h"
#include "linux/bus/BusMessageReader.h"
#include "linux/bus/BusNames.h"
#include "linux/bus/SensorsProperties.h"
#include "linux/bus/UnitState.h"
#include "platform/ProgramPaths.h"
#include "service/Client.h"

#include <systemd/sd-bus.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <utility>

namespace orv {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds patience{10};
// A unit that fails says so to nobody who waits for its name: it is looked at from some time on, until there is a
// reply.
constexpr std::chrono::milliseconds untilFirstLook{500};
constexpr std::chrono::milliseconds betweenLooks{250};
constexpr const char* bundleIdentifier = ORV_BUNDLE_IDENTIFIER;
constexpr const char* unitName = "orv-smc-helper.service";

std::uint64_t microseconds(Clock::duration duration)
{
    const auto count = std::chrono::duration_cast<std::chrono::microseconds>(duration).count();
    return static_cast<std::uint64_t>(std::max<decltype(count)>(count, 0));
}

ServiceAnswer failure(const std::string& what, const std::string& reason)
{
    return {std::nullopt, std::string("the service ") + bundleIdentifier + " cannot be " + what + ": " + reason};
}

// Where to look, for one line.
ServiceAnswer startFailure(const std::string& reason, const std::optional<UnitState>& state)
{
    auto text = reason;
    if (state && state->lacksNamespace()) {
        text += "; where users may make no namespaces, \"systemctl --user daemon-reload\" adds " + installationPrefix()
            + "/share/orv-smc-helper/no-user-namespaces.conf";
    }
    if (state)
        text += "; see journalctl --user -u orv-smc-helper";
    return failure("started", text);
}

// By the bus itself, by systemd, or by both (dbus-daemon's activation).
bool isStartFailure(std::string_view errorName)
{
    return errorName.starts_with("org.freedesktop.DBus.Error.Spawn.")
        || errorName.starts_with("org.freedesktop.systemd1.") || errorName == "org.freedesktop.DBus.Error.TimedOut";
}

/// One request, from connecting to the reply, within one deadline.
class ServiceCall {
public:
    ServiceAnswer make(Request request);

private:
    int connect();
    int send(Request request);
    int call(const char* interface, const char* method, const char* argument, BusMessage& answer);
    int step(Clock::time_point until);
    std::optional<UnitState> failedUnit();
    std::optional<ServiceAnswer> waitForReply();
    ServiceAnswer answer();
    static int replied(sd_bus_message* message, void* reply, sd_bus_error*);

    const Clock::time_point deadline = Clock::now() + patience;
    BusConnection bus;
    BusMessage times; // asked for before the reply, so that an age is never too small
    BusMessage reply;
};

ServiceAnswer ServiceCall::make(Request request)
{
    if (const int result = connect(); result < 0)
        return failure("asked", noSessionBus(result));
    if (const int result = send(request); result < 0)
        return failure("asked", std::strerror(-result));
    if (auto end = waitForReply())
        return std::move(*end);
    return answer();
}

int ServiceCall::connect()
{
    if (const int result = sd_bus_open_user(bus.out()); result < 0)
        return result;
    while (sd_bus_is_ready(bus.get()) <= 0) {
        if (Clock::now() >= deadline)
            return -ETIMEDOUT;
        if (const int result = step(deadline); result < 0)
            return result;
    }
    return 0;
}

int ServiceCall::send(Request request)
{
    const int result = call("org.freedesktop.DBus.Properties", "GetAll", sensorsInterface, times);
    return result < 0 ? result : call(requestInterface, methodOf(request), nullptr, reply);
}

int ServiceCall::call(const char* interface, const char* method, const char* argument, BusMessage& answer)
{
    BusMessage message;
    int result = sd_bus_message_new_method_call(
        bus.get(), message.out(), bundleIdentifier, objectPath(bundleIdentifier).c_str(), interface, method);
    if (result >= 0 && argument)
        result = sd_bus_message_append(message.get(), "s", argument);
    if (result < 0)
        return result;
    return sd_bus_call_async(bus.get(), nullptr, message.get(), replied, &answer, microseconds(patience));
}

// Does what can be done on the connection, or waits for it.
int ServiceCall::step(Clock::time_point until)
{
    if (const int result = sd_bus_process(bus.get(), nullptr); result != 0)
        return result;
    const int result = sd_bus_wait(bus.get(), microseconds(until - Clock::now()));
    return result == -EINTR ? 0 : result;
}

// Of a service that runs without its unit, or answers late, nothing is to be said.
std::optional<UnitState> ServiceCall::failedUnit()
{
    BusMessage owned;
    int isOwned = 0;
    const int result = sd_bus_call_method(bus.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus",
        "org.freedesktop.DBus", "NameHasOwner", nullptr, owned.out(), "s", bundleIdentifier);
    if (result < 0 || sd_bus_message_read(owned.get(), "b", &isOwned) < 0 || isOwned)
        return std::nullopt;
    auto state = unitState(bus.get(), unitName);
    return state && state->hasFailed() ? state : std::nullopt;
}

std::optional<ServiceAnswer> ServiceCall::waitForReply()
{
    auto look = Clock::now() + untilFirstLook;
    while (!reply) {
        const auto now = Clock::now();
        if (now >= deadline)
            return failure("asked", "it does not answer");
        if (now >= look) {
            if (const auto state = failedUnit())
                return startFailure(unitName + (' ' + state->text()), state);
            look = now + betweenLooks;
        }
        if (const int result = step(std::min(look, deadline)); result < 0)
            return failure("asked", std::strerror(-result));
    }
    return std::nullopt;
}

ServiceAnswer ServiceCall::answer()
{
    if (const auto* error = sd_bus_message_get_error(reply.get())) {
        const std::string reason = error->message ? error->message : error->name;
        return isStartFailure(error->name) ? startFailure(reason, unitState(bus.get(), unitName))
                                           : failure("asked", reason);
    }
    auto value = readBusValue(reply.get());
    const bool isReply = value && value->as<Dictionary>();
    if (!isReply)
        return failure("asked", "its reply cannot be read");
    const bool isTold = times && !sd_bus_message_is_method_error(times.get(), nullptr);
    return {std::move(value), {}, isTold ? serviceTiming(readBusDictionary(times.get())) : std::nullopt};
}

int ServiceCall::replied(sd_bus_message* message, void* reply, sd_bus_error*)
{
    *static_cast<BusMessage*>(reply) = BusMessage(sd_bus_message_ref(message));
    return 0;
}

} // namespace

ServiceAnswer askService(Request request)
{
    return ServiceCall().make(request);
}

} // namespace orv
