#include "platform/CommandLine.h"
#include "platform/linux/BusService.h"
#include "platform/linux/EventRunLoop.h"
#include "platform/linux/HostPlatform.h"
#include "platform/linux/ProfilerProgram.h"
#include "platform/linux/SpawnLauncher.h"
#include "platform/simulated/MachineFile.h"
#include "platform/simulated/SimulatedPlatform.h"
#include "service/OrvSMCHelperServer.h"

#include <signal.h>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <optional>
#include <string>

namespace {

using namespace orv;

constexpr const char* bundleIdentifier = ORV_BUNDLE_IDENTIFIER;

// Blocked before any thread starts, so that the bus thread alone receives them.
void blockTermination()
{
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGTERM);
    sigaddset(&signals, SIGINT);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

// Ends the process as the signal would have ended it.
void dieOf(int signalNumber)
{
    signal(signalNumber, SIG_DFL);
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, signalNumber);
    pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
    raise(signalNumber);
}

/// The life of the helper, in the order in which a client may rely on it: nothing can be asked before the first
/// refresh, which the creation of the server performs, has finished.
int serve(EventRunLoop& runLoop, SpawnLauncher& launcher, const Platform& platform, SimulatedPlatform* simulation)
{
    BusService listener(platform.bundle.identifier(), runLoop, simulation);
    if (!listener.isConnected())
        return 1;
    if (simulation) {
        listener.onTermination([simulation](int signalNumber) {
            simulation->bundle.removeContainer();
            dieOf(signalNumber);
        });
    }
    setSharedPlatform(platform);
    listener.resume(OrvSMCHelperServer::shared());
    const int status = runLoop.run();
    launcher.stop();
    return status;
}

int serveSimulated(const std::string& path)
{
    std::string fault;
    const auto machine = readMachineFile(path, fault);
    if (!machine) {
        std::fprintf(stderr, "orv-smc-helper: %s\n", fault.c_str());
        return 2;
    }
    blockTermination();
    SpawnLauncher launcher(simulatedProfilerProgram(path));
    EventRunLoop runLoop;
    SimulatedPlatform simulation(*machine, bundleIdentifier, runLoop, launcher);
    return serve(runLoop, launcher, simulation.platform, &simulation);
}

int serveHost()
{
    const char* root = std::getenv("ORV_ROOT");
    SpawnLauncher launcher(hostProfilerProgram());
    EventRunLoop runLoop;
    HostPlatform host(root ? root : "", bundleIdentifier, runLoop, launcher);
    return serve(runLoop, launcher, host.platform, nullptr);
}

} // namespace

int main(int argumentCount, char** arguments)
{
    std::optional<std::string> machinePath;
    CLI::App application(
        "Serves this computer's temperatures, fans and Bluetooth battery levels on the session bus.", "orv-smc-helper");
    application.set_version_flag("--version", "orv-smc-helper " ORV_VERSION);
    application.add_option("--simulate", machinePath, "Serve the Mac that a machine file describes instead")
        ->type_name("FILE");
    if (const auto status = parseCommandLine(application, argumentCount, arguments))
        return *status;
    try {
        return machinePath ? serveSimulated(*machinePath) : serveHost();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "orv-smc-helper: %s\n", error.what());
        return 1;
    }
}
