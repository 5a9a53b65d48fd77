// usage: bench-watchers COUNT
// Watches a running, simulated service from COUNT connections. Reads commands from standard input, one a line, and
// answers each with one line of JSON; times are microseconds.
//   claim, release   every watcher does so, one after the other
//   ask              every watcher asks for the times and for both replies
//   told ROUNDS      the Mac is woken, which refreshes it, and every watcher waits for the notice
//   bare ROUNDS      the floor: another peer sends a signal, and every watcher waits for it
//   heard            of how many refreshes the first watcher has heard
//   leave            every watcher leaves the bus, one after the other

#include "linux/bus/BusHandles.h"
#include "linux/bus/BusNames.h"
#include "linux/loop/Clocks.h"
#include "service/Request.h"

#include <sys/epoll.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <functional>
#include <iostream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

using namespace orv;

namespace {

constexpr const char* service = ORV_BUNDLE_IDENTIFIER;
constexpr const char* bareInterface = "org.orv.Bare";
constexpr useconds_t settled = 2000; // after a call, until the service has done what follows from it

void check(int result, const char* what)
{
    if (result >= 0)
        return;
    std::fprintf(stderr, "bench-watchers: %s: error %d\n", what, -result);
    std::exit(1);
}

double now()
{
    return std::chrono::duration<double, std::micro>(timeSinceStart()).count();
}

/// One connection that listens to both kinds of signals.
struct Watcher {
    BusConnection bus;
    std::map<std::uint64_t, int> notices; // by the time of their refresh
    int bareSignals = 0;
    double last = 0; // when something was heard
};

int noticeArrived(sd_bus_message* signal, void* watcher, sd_bus_error*)
{
    auto& self = *static_cast<Watcher*>(watcher);
    self.last = now();
    const char* name = nullptr;
    std::uint64_t time = 0;
    check(sd_bus_message_skip(signal, "s"), "a notice");
    check(sd_bus_message_enter_container(signal, 'a', "{sv}"), "a notice");
    check(sd_bus_message_enter_container(signal, 'e', "sv"), "a notice");
    check(sd_bus_message_read(signal, "sv", &name, "t", &time), "a notice");
    ++self.notices[time];
    return 0;
}

int bareArrived(sd_bus_message*, void* watcher, sd_bus_error*)
{
    auto& self = *static_cast<Watcher*>(watcher);
    self.last = now();
    ++self.bareSignals;
    return 0;
}

class Crowd {
public:
    explicit Crowd(std::size_t count);

    std::string claim(const char* method);
    std::string ask();
    std::string told(int rounds);
    std::string bare(int rounds);
    std::string heard();
    std::string leave();

private:
    void call(sd_bus* bus, const char* interface, const char* method);
    void listen(const std::function<bool(const Watcher&)>& isDone);
    template <typename Send, typename IsDone> std::vector<double> measure(int rounds, Send send, IsDone isDone);

    const std::string path = objectPath(service);
    int epoll = epoll_create1(0);
    BusConnection driver;
    std::deque<Watcher> watchers;
};

Crowd::Crowd(std::size_t count)
    : watchers(count)
{
    check(sd_bus_open_user(driver.out()), "no bus");
    const char* name = nullptr; // asked for now, since the bus leaves a connection that says nothing at first
    check(sd_bus_get_unique_name(driver.get(), &name), "no bus");
    for (auto& watcher : watchers) {
        auto* bus = (check(sd_bus_open_user(watcher.bus.out()), "no bus"), watcher.bus.get());
        check(sd_bus_match_signal(bus, nullptr, service, path.c_str(), "org.freedesktop.DBus.Properties",
                  "PropertiesChanged", noticeArrived, &watcher),
            "no match");
        check(sd_bus_match_signal(bus, nullptr, nullptr, "/bare", bareInterface, "Told", bareArrived, &watcher),
            "no match");
        epoll_event event{EPOLLIN, {.ptr = &watcher}};
        check(epoll_ctl(epoll, EPOLL_CTL_ADD, sd_bus_get_fd(bus), &event), "no epoll");
    }
}

void Crowd::call(sd_bus* bus, const char* interface, const char* method)
{
    check(sd_bus_call_method(bus, service, path.c_str(), interface, method, nullptr, nullptr, nullptr), method);
}

std::string Crowd::claim(const char* method)
{
    for (auto& watcher : watchers) {
        call(watcher.bus.get(), sensorsInterface, method);
        usleep(settled);
    }
    return "{}";
}

std::string Crowd::ask()
{
    for (auto& watcher : watchers) {
        check(sd_bus_call_method(watcher.bus.get(), service, path.c_str(), "org.freedesktop.DBus.Properties", "GetAll",
                  nullptr, nullptr, "s", sensorsInterface),
            "GetAll");
        for (const auto& row : requests)
            call(watcher.bus.get(), requestInterface, row.method);
    }
    return "{}";
}

// Until every watcher is done.
void Crowd::listen(const std::function<bool(const Watcher&)>& isDone)
{
    std::vector<epoll_event> events(watchers.size());
    while (!std::ranges::all_of(watchers, isDone)) {
        const int count = epoll_wait(epoll, events.data(), static_cast<int>(events.size()), 10'000);
        if (count <= 0)
            check(-ETIMEDOUT, "somebody was not told");
        for (int index = 0; index < count; ++index) {
            auto& watcher = *static_cast<Watcher*>(events[static_cast<std::size_t>(index)].data.ptr);
            while (sd_bus_process(watcher.bus.get(), nullptr) > 0) { }
        }
    }
}

template <typename Send, typename IsDone> std::vector<double> Crowd::measure(int rounds, Send send, IsDone isDone)
{
    std::vector<double> times;
    for (int round = 0; round < rounds; ++round) {
        const double started = now();
        send(round);
        listen([&](const Watcher& watcher) { return isDone(watcher, round, started); });
        for (const auto& watcher : watchers)
            times.push_back(watcher.last - started);
    }
    std::ranges::sort(times);
    return times;
}

std::string percentiles(const std::vector<double>& times, const std::string& more)
{
    const auto at = [&](double part) { return times[static_cast<std::size_t>(part * double(times.size() - 1))]; };
    std::ostringstream text;
    text << "{\"p50\": " << at(0.5) << ", \"p99\": " << at(0.99) << more << "}";
    return text.str();
}

std::string Crowd::told(int rounds)
{
    const auto wake = [&](int) {
        check(sd_bus_call_method_async(
                  driver.get(), nullptr, service, path.c_str(), simulationInterface, "Wake", nullptr, nullptr, nullptr),
            "Wake");
        check(sd_bus_flush(driver.get()), "Wake");
    };
    const auto isTold = [](const Watcher& watcher, int, double started) {
        return !watcher.notices.empty() && double(watcher.notices.rbegin()->first) >= started;
    };
    const auto times = measure(rounds, wake, isTold);
    heard(); // also what came late, or twice
    std::map<std::uint64_t, int> refreshes;
    int twice = 0;
    for (const auto& watcher : watchers) {
        for (const auto& [time, count] : watcher.notices) {
            ++refreshes[time];
            twice += count - 1;
        }
    }
    const auto missed = std::ranges::count_if(
        refreshes, [&](const auto& refresh) { return std::size_t(refresh.second) != watchers.size(); });
    std::ostringstream more;
    more << ", \"refreshes\": " << refreshes.size() << ", \"twice\": " << twice << ", \"missed\": " << missed;
    return percentiles(times, more.str());
}

std::string Crowd::bare(int rounds)
{
    const int before = watchers.front().bareSignals;
    const auto send = [&](int) {
        check(sd_bus_emit_signal(driver.get(), "/bare", bareInterface, "Told", ""), "a signal");
        check(sd_bus_flush(driver.get()), "a signal");
    };
    const auto isTold = [&](const Watcher& watcher, int round, double) { return watcher.bareSignals > before + round; };
    return percentiles(measure(rounds, send, isTold), "");
}

std::string Crowd::heard()
{
    usleep(100 * settled);
    for (auto& watcher : watchers) {
        while (sd_bus_process(watcher.bus.get(), nullptr) > 0) { }
    }
    return "{\"refreshes\": " + std::to_string(watchers.front().notices.size()) + '}';
}

std::string Crowd::leave()
{
    for (auto& watcher : watchers) {
        watcher.bus.reset();
        usleep(settled);
    }
    return "{}";
}

std::string answer(Crowd& crowd, const std::string& command, int number)
{
    if (command == "claim")
        return crowd.claim("Claim");
    if (command == "release")
        return crowd.claim("Release");
    if (command == "ask")
        return crowd.ask();
    if (command == "heard")
        return crowd.heard();
    if (command == "told")
        return crowd.told(number);
    return command == "bare" ? crowd.bare(number) : crowd.leave();
}

} // namespace

int main(int argumentCount, char** arguments)
{
    rlimit files{};
    getrlimit(RLIMIT_NOFILE, &files);
    files.rlim_cur = files.rlim_max; // select is not used here
    setrlimit(RLIMIT_NOFILE, &files);
    Crowd crowd(argumentCount > 1 ? std::strtoul(arguments[1], nullptr, 10) : 1000);
    std::cout << "{}" << std::endl;
    std::string line;
    while (std::getline(std::cin, line)) {
        std::istringstream words(line);
        std::string command;
        int number = 0;
        words >> command >> number;
        std::cout << answer(crowd, command, number) << std::endl;
    }
}
