// usage: bench-requests floor COUNT | slow COUNT IDLE_BUS SLOW_BUS | mixed COUNT
// Asks a running service. Prints one JSON object; times are microseconds.

#include "bench/BareNames.h"
#include "linux/bus/BusMessageReader.h"
#include "linux/bus/BusNames.h"
#include "service/Request.h"
#include "tests/support/UnansweredBus.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <set>
#include <string>
#include <string_view>
#include <vector>

using namespace orv;

namespace {

constexpr const char* service = ORV_BUNDLE_IDENTIFIER;
constexpr std::size_t warmUp = 200;

void check(int result, const char* what)
{
    if (result >= 0)
        return;
    std::fprintf(stderr, "bench-requests: %s: error %d\n", what, -result);
    std::exit(1);
}

sd_bus* connection(const char* address)
{
    sd_bus* bus = nullptr;
    if (!address) {
        check(sd_bus_open_user(&bus), "cannot connect");
        return bus;
    }
    check(sd_bus_new(&bus), "no bus");
    check(sd_bus_set_address(bus, address), "no address");
    check(sd_bus_set_bus_client(bus, 1), "no client");
    check(sd_bus_start(bus), "cannot connect");
    return bus;
}

BusMessage call(sd_bus* bus, const char* interface, const char* method)
{
    static const auto path = objectPath(service);
    BusMessage reply;
    check(sd_bus_call_method(bus, service, path.c_str(), interface, method, nullptr, reply.out(), nullptr), method);
    return reply;
}

BusMessage callBare(sd_bus* bus)
{
    BusMessage reply;
    check(sd_bus_call_method(bus, bareName, barePath, bareName, bareMethod, nullptr, reply.out(), nullptr), bareName);
    return reply;
}

/// Times of calls of one kind.
class Times {
public:
    template <typename Call> void measure(Call call)
    {
        using Clock = std::chrono::steady_clock;
        const auto start = Clock::now();
        call();
        const std::chrono::duration<double, std::micro> taken = Clock::now() - start;
        if (++calls > warmUp)
            times.push_back(taken.count());
    }

    void print(const char* name)
    {
        std::ranges::sort(times);
        std::printf("\"%s\": {\"p50\": %.2f, \"p99\": %.2f}", name, percentile(50), percentile(99));
    }

private:
    double percentile(std::size_t percent) const { return times[(times.size() - 1) * percent / 100]; }

    std::size_t calls = 0;
    std::vector<double> times;
};

void printPair(Times& first, const char* firstName, Times& second, const char* secondName)
{
    std::printf("{");
    first.print(firstName);
    std::printf(", ");
    second.print(secondName);
    std::printf("}\n");
}

void measureAgainstBareService(std::size_t count)
{
    auto* const bus = connection(nullptr);
    const auto ask = [&] { return call(bus, requestInterface, methodOf(Request::thermal)); };
    const auto askBare = [&] { return callBare(bus); };
    if (readBusValue(ask().get()) != readBusValue(askBare().get()))
        check(-EBADMSG, "the bare service answers something else");
    Times bare;
    Times requests;
    for (std::size_t done = 0; done < count + warmUp; ++done) {
        bare.measure(askBare);
        requests.measure(ask);
    }
    printPair(bare, "bare", requests, "thermal");
}

void measureBesideSlowRefresh(std::size_t count, const char* idleAddress, const char* slowAddress)
{
    auto* const idleBus = connection(idleAddress);
    auto* const slowBus = connection(slowAddress);
    Times idle;
    Times slow;
    for (std::size_t done = 0; done < count + warmUp; ++done) {
        idle.measure([&] { call(idleBus, requestInterface, methodOf(Request::thermal)); });
        slow.measure([&] { call(slowBus, requestInterface, methodOf(Request::thermal)); });
    }
    printPair(idle, "idle", slow, "slow");
}

// The temperatures of the machine behind it move on together: a reply with two different ones is of two refreshes.
std::set<double> temperatures(const Value& reply)
{
    std::set<double> values;
    for (const auto& [code, entry] : *reply.as<Dictionary>()) {
        const auto* value = entry.as<Dictionary>()->find("value");
        if (const auto* degrees = value ? value->as<double>() : nullptr)
            values.insert(*degrees);
    }
    return values;
}

void lookForMixedReplies(std::size_t count)
{
    auto* const bus = connection(nullptr);
    std::size_t mixed = 0;
    std::size_t changes = 0;
    std::set<double> previous;
    for (std::size_t done = 0; done < count; ++done) {
        if (done % 20 == 0) // keeps a refresh under way
            check(sd_bus_call_method_async(bus, nullptr, service, objectPath(service).c_str(), simulationInterface,
                      "Wake", nullptr, nullptr, nullptr),
                "Wake");
        const auto reply = readBusValue(call(bus, requestInterface, methodOf(Request::thermal)).get());
        auto values = reply ? temperatures(*reply) : std::set<double>{};
        mixed += values.size() != 1;
        changes += values != previous;
        previous = std::move(values);
    }
    std::printf("{\"replies\": %zu, \"mixed\": %zu, \"changes\": %zu}\n", count, mixed, changes);
}

} // namespace

int main(int argumentCount, char** arguments)
{
    const std::string_view kind = argumentCount > 2 ? arguments[1] : "";
    const auto count = argumentCount > 2 ? std::strtoul(arguments[2], nullptr, 10) : 0;
    if (kind == "floor" && argumentCount == 3)
        measureAgainstBareService(count);
    else if (kind == "slow" && argumentCount == 5)
        measureBesideSlowRefresh(count, arguments[3], arguments[4]);
    else if (kind == "mixed" && argumentCount == 3)
        lookForMixedReplies(count);
    else
        return std::fputs("usage: bench-requests floor COUNT | slow COUNT IDLE_BUS SLOW_BUS | mixed COUNT\n", stderr),
               2;
    return 0;
}
