#include "linux/bus/SensorsInterface.h"

#include "linux/bus/BusNames.h"
#include "linux/bus/SystemBus.h"
#include "linux/loop/EventRunLoop.h"
#include "service/OrvSMCHelperServer.h"

#include <chrono>
#include <cstddef>

namespace orv {

namespace {

constexpr std::size_t mostClaimants = 10'000; // of matches a session's bus takes five times as many of one connection
constexpr std::uint64_t mostWaitingMessages = 16; // for a bus that takes nothing: a later notice says the same

const SensorsInterface& interfaceOf(void* sensors)
{
    return *static_cast<SensorsInterface*>(sensors);
}

template <auto time>
int getTime(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply, void* sensors, sd_bus_error*)
{
    return sd_bus_message_append(reply, "t", (*interfaceOf(sensors).times()).*time);
}

int getAsleep(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply, void* sensors, sd_bus_error*)
{
    return sd_bus_message_append(reply, "b", static_cast<int>(interfaceOf(sensors).times()->isAsleep));
}

int getInterval(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply, void*, sd_bus_error*)
{
    using std::chrono::microseconds;
    const auto interval = std::chrono::duration_cast<microseconds>(OrvSMCHelperServer::reloadInterval).count();
    return sd_bus_message_append(reply, "t", static_cast<std::uint64_t>(interval));
}

int getVersion(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply, void*, sd_bus_error*)
{
    return sd_bus_message_append(reply, "s", ORV_VERSION);
}

bool isTakingNothing(sd_bus* bus)
{
    std::uint64_t waiting = 0;
    return sd_bus_get_n_queued_write(bus, &waiting) >= 0 && waiting >= mostWaitingMessages;
}

} // namespace

// No change of a time is announced without a claim, which is what EMITS_CHANGE would promise.
const sd_bus_vtable SensorsInterface::members[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_PROPERTY("LastRefresh", "t", getTime<&RefreshTimes::lastRefresh>, 0, 0),
    SD_BUS_PROPERTY("LastBluetoothReport", "t", getTime<&RefreshTimes::lastBluetoothReport>, 0, 0),
    SD_BUS_PROPERTY("LastWatchFile", "t", getTime<&RefreshTimes::lastWatchFile>, 0, 0),
    SD_BUS_PROPERTY("Asleep", "b", getAsleep, 0, 0),
    SD_BUS_PROPERTY("Interval", "t", getInterval, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_PROPERTY("Version", "s", getVersion, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_METHOD("Claim", "", "", claim, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("Release", "", "", release, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_VTABLE_END,
};

SensorsInterface::SensorsInterface(RefreshTimesKeeper& timesKeeper, EventRunLoop& loop)
    : keeper(timesKeeper)
    , busLoop(loop)
{
    keeper.onChange = [this] {
        if (isClaimed)
            busLoop.post([this] { tellClaimants(); });
    };
}

SensorsInterface::~SensorsInterface()
{
    keeper.onChange = [] { };
}

int SensorsInterface::publish(sd_bus* connection, const std::string& objectPath)
{
    bus = connection;
    path = objectPath;
    return sd_bus_add_object_vtable(bus, nullptr, path.c_str(), sensorsInterface, members, this);
}

void SensorsInterface::withdraw()
{
    isClaimed = false;
    claimants.clear();
    bus = nullptr;
}

int SensorsInterface::claim(sd_bus_message* call, void* sensors, sd_bus_error*)
{
    auto& self = *static_cast<SensorsInterface*>(sensors);
    const std::string peer = sd_bus_message_get_sender(call);
    auto found = self.claimants.find(peer);
    if (found == self.claimants.end()) {
        if (self.claimants.size() == mostClaimants)
            return sd_bus_reply_method_errorf(call, SD_BUS_ERROR_LIMITS_EXCEEDED, "too many peers have claims already");
        found = self.claimants.try_emplace(peer, self, peer).first;
        if (const int result = self.awaitDeparture(found->second); result < 0) {
            self.forget(peer);
            return result;
        }
        self.isClaimed = true;
    }
    ++found->second.claims;
    return sd_bus_reply_method_return(call, nullptr);
}

int SensorsInterface::release(sd_bus_message* call, void* sensors, sd_bus_error*)
{
    auto& self = *static_cast<SensorsInterface*>(sensors);
    const auto found = self.claimants.find(sd_bus_message_get_sender(call));
    if (found != self.claimants.end() && --found->second.claims == 0)
        self.forget(found->second.peer);
    return sd_bus_reply_method_return(call, nullptr);
}

// The library's own tracking waits for the bus. A peer may be gone before its departure is awaited: so the bus is asked
// for it afterwards.
int SensorsInterface::awaitDeparture(Claimant& claimant)
{
    const auto match = ownerChanges(claimant.peer.c_str());
    const int result =
        sd_bus_add_match_async(bus, claimant.departure.out(), match.c_str(), departed, departureAwaited, &claimant);
    if (result < 0)
        return result;
    return sd_bus_call_method_async(bus, claimant.presence.out(), "org.freedesktop.DBus", "/org/freedesktop/DBus",
        "org.freedesktop.DBus", "NameHasOwner", presenceKnown, &claimant, "s", claimant.peer.c_str());
}

int SensorsInterface::departed(sd_bus_message*, void* claimant, sd_bus_error*)
{
    const auto& left = *static_cast<Claimant*>(claimant);
    left.sensors.forget(left.peer);
    return 0;
}

// A bus that has no match left for it would never tell of the departure.
int SensorsInterface::departureAwaited(sd_bus_message* reply, void* claimant, sd_bus_error*)
{
    return sd_bus_message_is_method_error(reply, nullptr) > 0 ? departed(reply, claimant, nullptr) : 0;
}

int SensorsInterface::presenceKnown(sd_bus_message* reply, void* claimant, sd_bus_error*)
{
    int isPresent = 1;
    sd_bus_message_read(reply, "b", &isPresent);
    return isPresent ? 0 : departed(reply, claimant, nullptr);
}

void SensorsInterface::forget(const std::string& peer)
{
    claimants.erase(std::string(peer)); // a copy: what names the peer goes with its claims
    isClaimed = !claimants.empty();
}

void SensorsInterface::tellClaimants()
{
    if (!claimants.empty() && !isTakingNothing(bus))
        sendChange();
}

int SensorsInterface::sendChange()
{
    const auto now = times();
    BusMessage change;
    if (const int result = sd_bus_message_new_signal(
            bus, change.out(), path.c_str(), "org.freedesktop.DBus.Properties", "PropertiesChanged");
        result < 0)
        return result;
    const int result = sd_bus_message_append(change.get(), "sa{sv}as", sensorsInterface, 4, //
        "LastRefresh", "t", now->lastRefresh, //
        "LastBluetoothReport", "t", now->lastBluetoothReport, //
        "LastWatchFile", "t", now->lastWatchFile, //
        "Asleep", "b", static_cast<int>(now->isAsleep), //
        0);
    return result < 0 ? result : sd_bus_send(bus, change.get(), nullptr);
}

} // namespace orv
