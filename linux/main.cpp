#include "linux/HostPlatform.h"
#include "linux/ProfilerProgram.h"
#include "linux/SpawnLauncher.h"
#include "linux/bus/BusService.h"
#include "linux/bus/RefreshTimes.h"
#include "linux/loop/EventRunLoop.h"
#include "linux/loop/ProgramEnd.h"
#include "linux/loop/ThreadStacks.h"
#include "service/OrvSMCHelperServer.h"
#include "simulated/Recording.h"
#include "simulated/RecordingPlayer.h"
#include "simulated/SimulatedPlatform.h"

#include <getopt.h>
#include <signal.h>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace orv;

constexpr const char* bundleIdentifier = ORV_BUNDLE_IDENTIFIER;

// Blocked before any thread starts, so that the bus thread alone receives them. What is ignored stays ignored, such as
// the closing of the terminal under nohup.
std::vector<int> blockTerminationSignals()
{
    std::vector<int> blocked;
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signalNumber : {SIGTERM, SIGINT, SIGHUP, SIGQUIT}) {
        struct sigaction action{};
        if (sigaction(signalNumber, nullptr, &action) == 0 && action.sa_handler == SIG_IGN)
            continue;
        blocked.push_back(signalNumber);
        sigaddset(&signals, signalNumber);
    }
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    return blocked;
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
int serve(EventRunLoop& runLoop, SpawnLauncher& launcher, Platform& platform, SimulatedPlatform* simulation,
    RecordingPlayer* player, Termination termination)
{
    RefreshTimesKeeper times;
    BusService listener(platform.bundle.identifier(), runLoop, times, simulation, std::move(termination));
    if (!listener.isConnected())
        return 1;
    platform.refreshObserver = &times;
    platform.workspace.registerSleepWakeObservers(times); // first: what is told of a wake is asleep no more
    setSharedPlatform(platform);
    listener.resume(OrvSMCHelperServer::shared());
    if (player)
        player->start(runLoop);
    const int status = runLoop.run();
    launcher.stop();
    return status;
}

int serveSimulated(const std::string& path, double from)
{
    std::string fault;
    auto recording = Recording::open(path, fault);
    if (!recording) {
        std::fprintf(stderr, "orv-smc-helper: %s\n", fault.c_str());
        return 2;
    }
    if (!recording->notice().empty())
        std::fprintf(stderr, "orv-smc-helper: %s\n", recording->notice().c_str());
    if (from > recording->length()) {
        std::fprintf(stderr, "orv-smc-helper: %s: ends before --from\n", path.c_str());
        return 2;
    }
    auto signals = blockTerminationSignals();
    RecordingPlayer* playing = nullptr; // set before the first child is started
    SpawnLauncher launcher(simulatedProfilerProgram(path, [&playing] { return playing->position(); }));
    EventRunLoop runLoop;
    SimulatedPlatform simulation(recording->machine(), bundleIdentifier, runLoop, launcher);
    RecordingPlayer player(*recording, simulation);
    playing = &player;
    player.skipTo(from);
    const auto terminate = [&simulation](int signalNumber) {
        simulation.bundle.removeContainer();
        dieOf(signalNumber);
    };
    return serve(runLoop, launcher, simulation.platform, &simulation, &player, {std::move(signals), terminate});
}

int serveHost()
{
    const char* root = std::getenv("ORV_ROOT");
    SpawnLauncher launcher(hostProfilerProgram());
    EventRunLoop runLoop;
    HostPlatform host(root ? root : "", bundleIdentifier, runLoop, launcher);
    return serve(runLoop, launcher, host.platform, nullptr, nullptr, {});
}

constexpr const char* help =
    R"(Serves temperatures, fans and Bluetooth battery levels on the session bus.
Usage: orv-smc-helper [OPTIONS]

Options:
  -h,--help                   Print this help message and exit
  --version                   Display program version information and exit
  --simulate FILE             The Mac of a machine file; a recording is played
  --from SECONDS              With --simulate: so many seconds into a recording

Example: orv-smc-helper --simulate machines/macbookpro-m1.json
)";

struct CommandLine {
    const char* machinePath = nullptr;
    double from = 0; // seconds
    std::optional<int> status; // when there is nothing more to do
};

int printed(const char* text)
{
    if (std::fputs(text, stdout) >= 0 && std::fflush(stdout) == 0)
        return 0;
    std::perror("orv-smc-helper: cannot write");
    return 1;
}

std::optional<double> secondsFrom(const char* text)
{
    char* end = nullptr;
    const double seconds = std::strtod(text, &end);
    return end != text && *end == '\0' && seconds >= 0 ? std::optional(seconds) : std::nullopt;
}

CommandLine refused(const char* why, const char* argument)
{
    std::fprintf(stderr, "orv-smc-helper: %s%s; see orv-smc-helper --help\n", why, argument);
    return {.status = 2};
}

// By getopt, which the C library has anyway: a library for command lines would take a third of this program's memory.
CommandLine parseCommandLine(int argumentCount, char** arguments)
{
    const option options[]{{"help", no_argument, nullptr, 'h'}, {"version", no_argument, nullptr, 'v'},
        {"simulate", required_argument, nullptr, 's'}, {"from", required_argument, nullptr, 'f'}, {}};
    constexpr int notAnOption = 1; // as the first character below asks for
    const char* unexpected = nullptr;
    CommandLine commandLine;
    int at = optind;
    for (int found = 0; (found = getopt_long(argumentCount, arguments, "-:h", options, nullptr)) != -1; at = optind) {
        if (found == 'h')
            return {.status = printed(help)};
        if (found == 'v')
            return {.status = printed("orv-smc-helper " ORV_VERSION "\n")};
        if (found == 's')
            commandLine.machinePath = optarg;
        else if (found == notAnOption)
            unexpected = unexpected ? unexpected : optarg;
        else if (found == ':')
            return refused("nothing follows ", arguments[at]);
        else if (found != 'f')
            return refused("no such option: ", arguments[at]);
        else if (const auto seconds = secondsFrom(optarg))
            commandLine.from = *seconds;
        else
            return refused("--from: not a number of seconds: ", optarg);
    }
    if (!unexpected && optind != argumentCount)
        unexpected = arguments[optind];
    if (unexpected)
        return refused("unexpected argument: ", unexpected);
    if (commandLine.from > 0 && !commandLine.machinePath)
        return refused("--from goes with --simulate", "");
    return commandLine;
}

// Of all threads. Nothing here throws, except the standard library for want of memory or descriptors.
void endForShortage()
{
    try {
        if (const auto shortage = std::current_exception())
            std::rethrow_exception(shortage);
    } catch (const std::exception& shortage) {
        tellOfEnd("cannot go on", shortage.what());
    }
    endAtOnce();
}

} // namespace

int main(int argumentCount, char** arguments)
{
    const auto commandLine = parseCommandLine(argumentCount, arguments);
    if (commandLine.status)
        return *commandLine.status;
    std::set_terminate(endForShortage);
    keepThreadStacksSmall();
    return commandLine.machinePath ? serveSimulated(commandLine.machinePath, commandLine.from) : serveHost();
}
