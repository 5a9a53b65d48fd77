#pragma once

#include "linux/bus/BusHandles.h"
#include "linux/bus/RefreshTimes.h"

#include <systemd/sd-bus.h>

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <string>

namespace orv {

class EventRunLoop;

/// org.orv.Sensors1: when the readings were measured, and a notice of each refresh for as long as any peer claims it.
/// Without a claim a refresh costs the bus thread nothing.
class SensorsInterface {
public:
    /// Both must outlive this. `busLoop` is the loop of the bus thread.
    SensorsInterface(RefreshTimesKeeper& keeper, EventRunLoop& busLoop);
    SensorsInterface(const SensorsInterface&) = delete;
    SensorsInterface& operator=(const SensorsInterface&) = delete;
    ~SensorsInterface();

    /// Adds the interface to an object. Bus thread. Negative error number.
    int publish(sd_bus* bus, const std::string& path);
    /// Lets go of the connection. Bus thread.
    void withdraw();

    std::shared_ptr<const RefreshTimes> times() const { return keeper.times.take(); }

private:
    /// A peer's claims, with what tells that it has left.
    struct Claimant {
        SensorsInterface& sensors;
        std::string peer;
        std::uint64_t claims = 0;
        BusSlot departure;
        BusSlot presence;
    };

    static int claim(sd_bus_message* call, void* sensors, sd_bus_error*);
    static int release(sd_bus_message* call, void* sensors, sd_bus_error*);
    static int departed(sd_bus_message*, void* claimant, sd_bus_error*);
    static int departureAwaited(sd_bus_message* reply, void* claimant, sd_bus_error*);
    static int presenceKnown(sd_bus_message* reply, void* claimant, sd_bus_error*);
    static const sd_bus_vtable members[];

    int awaitDeparture(Claimant& claimant);
    void forget(const std::string& peer);
    void tellClaimants();
    int sendChange();

    RefreshTimesKeeper& keeper;
    EventRunLoop& busLoop;
    std::atomic<bool> isClaimed = false;

    sd_bus* bus = nullptr; // from here on: of the bus thread
    std::string path;
    std::map<std::string, Claimant> claimants; // by unique name
};

} // namespace orv
