#pragma once

#include "linux/bus/BusHandles.h"
#include "linux/bus/BusSource.h"
#include "linux/bus/SensorsInterface.h"
#include "linux/bus/SimulationInterface.h"
#include "linux/loop/EventRunLoop.h"
#include "service/Request.h"

#include <systemd/sd-bus.h>

#include <functional>
#include <future>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace orv {

class OrvSMCHelperServer;
struct SimulatedPlatform;

/// What is done, on the bus thread, when one of some signals arrives. Every thread must block them.
struct Termination {
    std::vector<int> signals;
    std::function<void(int signal)> terminate;
};

/// The service on the session bus. It runs on a thread of its own, which answers from the server's latest readings and
/// so never waits for a refresh. When the bus cannot be reached, or goes away, it says so in one line and ends the
/// main loop with status 1.
class BusService {
public:
    /// Connects, without a name and without an object, and waits for the bus to accept that, at most ten seconds.
    /// `simulation` adds its own interface and may be nullptr. Signals are served from here on.
    BusService(std::string bundleIdentifier, EventRunLoop& mainLoop, RefreshTimesKeeper& times,
        SimulatedPlatform* simulation, Termination termination);
    /// Leaves the bus and ends the thread.
    ~BusService();

    /// False when there is no bus; the main loop has then been told to end.
    bool isConnected() const { return connected; }

    /// Publishes the object and claims the name, unless the bundle identifier is empty. Does not wait for the bus,
    /// whose refusal ends the main loop. The server must outlive this.
    void resume(const OrvSMCHelperServer& server);

private:
    void runThread();
    void serveSignals();
    int connect();
    void endStep(int result);
    void publish();
    void lose(int error);
    void fail(const std::string& what, int error);

    template <Request request> static int answer(sd_bus_message* call, void* service, sd_bus_error*);
    static int nameAnswered(sd_bus_message* reply, void* service, sd_bus_error*);
    static int disconnected(sd_bus_message*, void* service, sd_bus_error*);
    static const sd_bus_vtable requestMethods[];

    const std::string bundleIdentifier;
    EventRunLoop& mainLoop;
    SimulatedPlatform* const simulation;
    Termination termination;
    const OrvSMCHelperServer* server = nullptr;

    EventRunLoop busLoop; // from here on: of the bus thread, except for posting
    SimulationContext simulationContext;
    SensorsInterface sensors;
    BusConnection bus;
    BusSource busSource;
    std::unique_ptr<Timer> connecting; // until the bus has accepted the connection, or will not
    std::promise<bool> connection;
    bool hasFailed = false;

    bool connected = false; // of the main thread again
    std::thread thread;
};

} // namespace orv
