#include "linux/bus/BusFault.h"
#include "linux/bus/BusHandles.h"
#include "linux/bus/BusMessageReader.h"
#include "linux/bus/BusNames.h"
#include "linux/bus/SensorsProperties.h"
#include "linux/bus/SystemBus.h"
#include "linux/loop/EventHandles.h"
#include "linux/loop/EventRunLoop.h"
#include "service/OrvSMCHelperServer.h"
#include "service/Request.h"
#include "service/Watching.h"

#include <systemd/sd-bus.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <functional>
#include <memory>
#include <optional>
#include <utility>

namespace orv {

namespace {

constexpr const char* bundleIdentifier = ORV_BUNDLE_IDENTIFIER;
constexpr const char* propertiesInterface = "org.freedesktop.DBus.Properties";
constexpr std::uint64_t patience = 10'000'000; // microseconds
// Without the half second a refresh would come as often just after the end of the wait as before it.
constexpr Seconds longestSilence = OrvSMCHelperServer::reloadInterval + Seconds(0.5);

enum class Start { automatic, refused };

/// The service as a watcher sees it: claimed whenever it appears, and asked after each notice.
class BusWatch {
public:
    BusWatch(ServiceWatcher& serviceWatcher, int outputDescriptor)
        : watcher(serviceWatcher)
        , output(outputDescriptor)
    {
    }

    std::string run();

private:
    int connect();
    int listen();
    void claim(Start start);
    void askForTimes();
    void ask();
    void askFor(BusSlot& slot, const char* method, sd_bus_message_handler_t answered);
    void takeReply(sd_bus_message* message, BusSlot& slot, std::optional<Dictionary>& reply);
    void takeTimes(const Dictionary& times);
    void missing(const std::string& why);
    void proceed(bool isWanted);
    void awaitNext();

    int call(BusSlot& slot, const char* interface, const char* method, Start start, sd_bus_message_handler_t answered,
        const char* argument = nullptr);

    static BusWatch& watch(void* userdata) { return *static_cast<BusWatch*>(userdata); }
    static int claimed(sd_bus_message* reply, void* watch, sd_bus_error*);
    static int timesAnswered(sd_bus_message* reply, void* watch, sd_bus_error*);
    static int thermalAnswered(sd_bus_message* reply, void* watch, sd_bus_error*);
    static int bluetoothAnswered(sd_bus_message* reply, void* watch, sd_bus_error*);
    static int ownerChanged(sd_bus_message* signal, void* watch, sd_bus_error*);
    static int propertiesChanged(sd_bus_message* signal, void* watch, sd_bus_error*);
    static int disconnected(sd_bus_message*, void* watch, sd_bus_error*);
    static int noticesTaken(sd_event_source*, void* watch);
    static int readerGone(sd_event_source*, int, std::uint32_t, void* watch);

    ServiceWatcher& watcher;
    const int output;
    const std::string path = objectPath(bundleIdentifier);
    std::string fault;
    EventRunLoop loop;
    EventSource reader;
    EventSource notices; // runs when no message waits
    BusConnection bus;
    BusSlot claiming, timesCall, thermalCall, bluetoothCall;
    std::unique_ptr<Timer> silence;

    Dictionary latest; // properties
    Dictionary asked; // those that were known before the replies were asked for
    std::optional<Dictionary> thermal, bluetooth;
    std::uint64_t shown = 0; // the refresh whose replies were last asked for
};

std::string BusWatch::run()
{
    if (const int result = connect(); result < 0)
        return std::string("no session bus: ") + std::strerror(-result);
    claim(Start::automatic);
    loop.run();
    return fault;
}

int BusWatch::connect()
{
    if (const int result = sd_bus_open_user(bus.out()); result < 0)
        return result;
    sd_bus_set_method_call_timeout(bus.get(), patience);
    if (const int result = listen(); result < 0)
        return result;
    if (const int result = sd_event_add_defer(loop.event(), notices.out(), noticesTaken, this); result < 0)
        return result;
    sd_event_source_set_enabled(notices.get(), SD_EVENT_OFF);
    sd_event_source_set_priority(notices.get(), SD_EVENT_PRIORITY_IDLE);
    // A reader that goes away shows without being written to; a file, which has none, cannot be awaited.
    sd_event_add_io(loop.event(), reader.out(), output, 0, readerGone, this);
    return sd_bus_attach_event(bus.get(), loop.event(), SD_EVENT_PRIORITY_NORMAL);
}

int BusWatch::listen()
{
    if (const int result = sd_bus_match_signal(bus.get(), nullptr, "org.freedesktop.DBus.Local",
            "/org/freedesktop/DBus/Local", "org.freedesktop.DBus.Local", "Disconnected", disconnected, this);
        result < 0)
        return result;
    if (const int result = sd_bus_match_signal(bus.get(), nullptr, bundleIdentifier, path.c_str(), propertiesInterface,
            "PropertiesChanged", propertiesChanged, this);
        result < 0)
        return result;
    return sd_bus_add_match(bus.get(), nullptr, ownerChanges(bundleIdentifier).c_str(), ownerChanged, this);
}

int BusWatch::call(BusSlot& slot, const char* interface, const char* method, Start start,
    sd_bus_message_handler_t answered, const char* argument)
{
    BusMessage message;
    if (const int result =
            sd_bus_message_new_method_call(bus.get(), message.out(), bundleIdentifier, path.c_str(), interface, method);
        result < 0)
        return result;
    sd_bus_message_set_auto_start(message.get(), start == Start::automatic);
    if (argument)
        sd_bus_message_append(message.get(), "s", argument);
    return sd_bus_call_async(bus.get(), slot.out(), message.get(), answered, this, 0);
}

// A service that was ended is not started again: it would be if it were called.
void BusWatch::claim(Start start)
{
    call(claiming, sensorsInterface, "Claim", start, claimed);
}

int BusWatch::claimed(sd_bus_message* reply, void* userdata, sd_bus_error*)
{
    auto& self = watch(userdata);
    if (const auto* error = sd_bus_message_get_error(reply))
        self.missing(serviceFault(*error));
    else
        self.call(self.timesCall, propertiesInterface, "GetAll", Start::refused, timesAnswered, sensorsInterface);
    return 0;
}

int BusWatch::timesAnswered(sd_bus_message* reply, void* userdata, sd_bus_error*)
{
    if (!sd_bus_message_is_method_error(reply, nullptr))
        watch(userdata).takeTimes(readBusDictionary(reply));
    return 0;
}

void BusWatch::takeTimes(const Dictionary& times)
{
    for (const auto& [name, value] : times)
        latest.set(name, value);
    sd_event_source_set_enabled(notices.get(), SD_EVENT_ONESHOT);
}

// Many notices may have come while this program was stopped: they are one reason to ask.
int BusWatch::noticesTaken(sd_event_source*, void* userdata)
{
    auto& self = watch(userdata);
    const bool isAsking = self.thermalCall || self.bluetoothCall;
    if (!isAsking && lastRefresh(self.latest) != self.shown)
        self.ask();
    return 0;
}

void BusWatch::ask()
{
    asked = latest;
    shown = lastRefresh(asked);
    thermal.reset();
    bluetooth.reset();
    call(thermalCall, requestInterface, methodOf(Request::thermal), Start::refused, thermalAnswered);
    call(bluetoothCall, requestInterface, methodOf(Request::bluetooth), Start::refused, bluetoothAnswered);
}

int BusWatch::thermalAnswered(sd_bus_message* reply, void* userdata, sd_bus_error*)
{
    auto& self = watch(userdata);
    self.takeReply(reply, self.thermalCall, self.thermal);
    return 0;
}

int BusWatch::bluetoothAnswered(sd_bus_message* reply, void* userdata, sd_bus_error*)
{
    auto& self = watch(userdata);
    self.takeReply(reply, self.bluetoothCall, self.bluetooth);
    return 0;
}

void BusWatch::takeReply(sd_bus_message* message, BusSlot& slot, std::optional<Dictionary>& reply)
{
    slot.reset();
    if (!sd_bus_message_is_method_error(message, nullptr))
        reply = readBusDictionary(message);
    if (thermalCall || bluetoothCall)
        return;
    sd_event_source_set_enabled(notices.get(), SD_EVENT_ONESHOT); // one that came meanwhile
    const auto timing = serviceTiming(asked);
    if (!thermal || !bluetooth)
        return;
    awaitNext();
    proceed(watcher.repliesArrived(
        {std::move(*thermal), std::move(*bluetooth), timing ? std::optional(timing->readings) : std::nullopt}));
}

void BusWatch::awaitNext()
{
    silence = loop.scheduleRepeating(longestSilence, [this] {
        if (const auto* isAsleep = latest.find("Asleep"))
            asked.set("Asleep", *isAsleep);
        if (const auto timing = serviceTiming(asked))
            proceed(watcher.nothingArrived(timing->readings));
    });
}

int BusWatch::propertiesChanged(sd_bus_message* signal, void* userdata, sd_bus_error*)
{
    const char* interface = nullptr;
    if (sd_bus_message_read(signal, "s", &interface) > 0 && std::string_view(interface) == sensorsInterface)
        watch(userdata).takeTimes(readBusDictionary(signal));
    return 0;
}

int BusWatch::ownerChanged(sd_bus_message* signal, void* userdata, sd_bus_error*)
{
    auto& self = watch(userdata);
    const char *name = nullptr, *before = nullptr, *now = nullptr;
    if (sd_bus_message_read(signal, "sss", &name, &before, &now) <= 0)
        return 0;
    for (auto* slot : {&self.claiming, &self.timesCall, &self.thermalCall, &self.bluetoothCall})
        slot->reset();
    if (*now)
        self.claim(Start::refused);
    else
        self.missing("it has ended");
    return 0;
}

void BusWatch::missing(const std::string& why)
{
    silence.reset();
    proceed(watcher.serviceMissing(std::string("the service ") + bundleIdentifier + " cannot be watched: " + why));
}

void BusWatch::proceed(bool isWanted)
{
    if (!isWanted)
        loop.exit(0);
}

int BusWatch::disconnected(sd_bus_message*, void* userdata, sd_bus_error*)
{
    auto& self = watch(userdata);
    self.fault = "the session bus went away";
    self.loop.exit(0);
    return 0;
}

int BusWatch::readerGone(sd_event_source*, int, std::uint32_t, void* userdata)
{
    watch(userdata).loop.exit(0);
    return 0;
}

} // namespace

std::string watchService(ServiceWatcher& watcher, int output)
{
    return BusWatch(watcher, output).run();
}

} // namespace orv
