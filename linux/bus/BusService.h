#pragma once

#include "linux/bus/BusHandles.h"
#include "linux/bus/SimulationInterface.h"
#include "linux/loop/EventRunLoop.h"
#include "service/Request.h"

#include <systemd/sd-bus.h>

#include <functional>
#include <string>
#include <thread>

namespace orv {

class OrvSMCHelperServer;
struct SimulatedPlatform;

/// The service on the session bus. It runs on a thread of its own, which answers from the server's latest readings and
/// so never waits for a refresh. When the bus cannot be reached, or goes away, it says so in one line and ends the
/// main loop with status 1.
class BusService {
public:
    /// Connects, without a name and without an object. `simulation` adds its own interface and may be nullptr.
    BusService(std::string bundleIdentifier, EventRunLoop& mainLoop, SimulatedPlatform* simulation);
    /// Leaves the bus and ends the thread.
    ~BusService();

    /// False when there is no bus; the main loop has then been told to end.
    bool isConnected() const { return connected; }

    /// Publishes the object and claims the name, unless the bundle identifier is empty; returns when that is done or
    /// has failed. The server must outlive this.
    void resume(const OrvSMCHelperServer& server);

    /// Calls back on the bus thread when SIGTERM or SIGINT, which every thread must block, arrives.
    void onTermination(std::function<void(int signal)> terminate);

private:
    void runThread(const std::function<void(bool isConnected)>& onConnected);
    int connect();
    void publish();
    void fail(const std::string& what, int error);

    template <Request request> static int answer(sd_bus_message* call, void* service, sd_bus_error*);
    static int disconnected(sd_bus_message*, void* service, sd_bus_error*);
    static const sd_bus_vtable requestMethods[];

    const std::string bundleIdentifier;
    EventRunLoop& mainLoop;
    SimulatedPlatform* const simulation;
    const OrvSMCHelperServer* server = nullptr;
    std::function<void(int signal)> terminate;

    EventRunLoop busLoop; // from here on: of the bus thread, except for posting
    SimulationContext simulationContext;
    BusConnection bus;
    bool hasFailed = false;
    bool connected = false;
    std::thread thread;
};

} // namespace orv
