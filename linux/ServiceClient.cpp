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
#include <span>
#include <string_view>
#include <utility>
#include <vector>

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

using Asked = std::span<const RequestRow>;
using Answers = std::vector<ServiceAnswer>;

/// Some requests, from connecting to the last reply, within one deadline.
class ServiceCall {
public:
    explicit ServiceCall(Asked requests)
        : asked(requests)
        , replies(requests.size())
    {
    }

    Answers make();

private:
    int connect();
    int send();
    int call(const char* interface, const char* method, const char* argument, BusMessage& answer);
    int step(Clock::time_point until);
    std::optional<UnitState> failedUnit();
    std::optional<ServiceAnswer> waitForReplies();
    bool isAnswered() const;
    ServiceAnswer answer(sd_bus_message* reply);
    Answers toAll(const ServiceAnswer& answer) const { return Answers(asked.size(), answer); }
    static int replied(sd_bus_message* message, void* reply, sd_bus_error*);

    const Asked asked;
    const Clock::time_point deadline = Clock::now() + patience;
    BusConnection bus;
    BusMessage times; // asked for before the replies, so that an age is never too small
    std::vector<BusMessage> replies;
};

Answers ServiceCall::make()
{
    if (const int result = connect(); result < 0)
        return toAll(failure("asked", noSessionBus(result)));
    if (const int result = send(); result < 0)
        return toAll(failure("asked", std::strerror(-result)));
    if (const auto end = waitForReplies())
        return toAll(*end);
    Answers answers;
    for (const auto& reply : replies)
        answers.push_back(answer(reply.get()));
    return answers;
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

int ServiceCall::send()
{
    int result = call("org.freedesktop.DBus.Properties", "GetAll", sensorsInterface, times);
    for (std::size_t index = 0; index < asked.size() && result >= 0; ++index)
        result = call(requestInterface, asked[index].method, nullptr, replies[index]);
    return result;
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

bool ServiceCall::isAnswered() const
{
    return std::ranges::all_of(replies, [](const auto& reply) { return reply.get() != nullptr; });
}

std::optional<ServiceAnswer> ServiceCall::waitForReplies()
{
    auto look = Clock::now() + untilFirstLook;
    while (!isAnswered()) {
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

ServiceAnswer ServiceCall::answer(sd_bus_message* reply)
{
    if (const auto* error = sd_bus_message_get_error(reply)) {
        const auto reason = serviceFault(*error);
        return isStartFailure(error->name) ? startFailure(reason, unitState(bus.get(), unitName))
                                           : failure("asked", reason);
    }
    auto value = readBusValue(reply);
    const bool isReply = value && value->as<Dictionary>();
    if (!isReply)
        return failure("asked", "its reply cannot be read");
    const bool isTold = times && !sd_bus_message_is_method_error(times.get(), nullptr);
    if (!isTold)
        return {std::move(value), {}, std::nullopt};
    sd_bus_message_rewind(times.get(), true); // another answer may have read it
    return {std::move(value), {}, serviceTiming(readBusDictionary(times.get()))};
}

int ServiceCall::replied(sd_bus_message* message, void* reply, sd_bus_error*)
{
    *static_cast<BusMessage*>(reply) = BusMessage(sd_bus_message_ref(message));
    return 0;
}

} // namespace

ServiceAnswer askService(Request request)
{
    return ServiceCall(Asked(&requests[static_cast<std::size_t>(request)], 1)).make().front();
}

std::vector<ServiceAnswer> askServiceForAll()
{
    return ServiceCall(requests).make();
}

} // namespace orv
