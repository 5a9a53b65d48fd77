// usage: bench-activation COUNT
// Times the activation of the service and of the empty program in turn, from the call to its reply, killing each after
// its reply. Prints one JSON object; times are milliseconds.

#include "linux/bus/BusNames.h"
#include "service/Request.h"
#include "tests/support/UnansweredBus.h"

#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

using namespace orv;

namespace {

struct Service {
    std::string name;
    std::string path;
    std::string interface;
    std::string method;
    std::vector<double> times{};
};

void check(int result, const char* what)
{
    if (result >= 0)
        return;
    std::fprintf(stderr, "bench-activation: %s: error %d\n", what, -result);
    std::exit(1);
}

unsigned processOf(sd_bus* bus, const std::string& name)
{
    BusMessage reply;
    check(sd_bus_call_method(bus, "org.freedesktop.DBus", "/", "org.freedesktop.DBus", "GetConnectionUnixProcessID",
              nullptr, reply.out(), "s", name.c_str()),
        "no process");
    unsigned process = 0;
    check(sd_bus_message_read(reply.get(), "u", &process), "no process");
    return process;
}

bool isOwned(sd_bus* bus, const std::string& name)
{
    BusMessage reply;
    int owned = 0;
    check(sd_bus_call_method(bus, "org.freedesktop.DBus", "/", "org.freedesktop.DBus", "NameHasOwner", nullptr,
              reply.out(), "s", name.c_str()),
        "no owner");
    check(sd_bus_message_read(reply.get(), "b", &owned), "no owner");
    return owned != 0;
}

void end(sd_bus* bus, const std::string& name)
{
    const auto process = static_cast<pid_t>(processOf(bus, name));
    kill(process, SIGKILL);
    while (isOwned(bus, name))
        usleep(1000);
    usleep(5000); // the kernel is still taking the process apart
}

void activate(sd_bus* bus, Service& service)
{
    using Clock = std::chrono::steady_clock;
    const auto start = Clock::now();
    check(sd_bus_call_method(bus, service.name.c_str(), service.path.c_str(), service.interface.c_str(),
              service.method.c_str(), nullptr, nullptr, nullptr),
        service.name.c_str());
    const std::chrono::duration<double, std::milli> taken = Clock::now() - start;
    service.times.push_back(taken.count());
    end(bus, service.name);
}

double median(std::vector<double> times)
{
    std::ranges::sort(times);
    return times[times.size() / 2];
}

} // namespace

int main(int argumentCount, char** arguments)
{
    const auto count = argumentCount == 2 ? std::strtoul(arguments[1], nullptr, 10) : 0;
    if (count == 0)
        return std::fputs("usage: bench-activation COUNT\n", stderr), 2;
    sd_bus* bus = nullptr;
    check(sd_bus_open_user(&bus), "cannot connect");
    Service measured{
        ORV_BUNDLE_IDENTIFIER, objectPath(ORV_BUNDLE_IDENTIFIER), requestInterface, methodOf(Request::thermal)};
    Service empty{"org.orv.Empty", "/", "org.orv.Empty", "Nothing"};
    for (unsigned long done = 0; done < count; ++done) {
        activate(bus, empty);
        activate(bus, measured);
    }
    std::printf("{\"empty\": %.3f, \"service\": %.3f}\n", median(empty.times), median(measured.times));
    return 0;
}
