#include "orvctl/collecting/EnterSimulation.h"
#include "orvctl/collecting/RecordSimulatedMac.h"
#include "orvctl/collecting/RecordedReadings.h"
#include "orvctl/collecting/Replay.h"
#include "orvctl/collecting/SimulatedClient.h"
#include "orvctl/collecting/SimulatedInspection.h"
#include "orvctl/collecting/SimulatedWatch.h"
#include "platform/ProgramPaths.h"

#include <crt_externs.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace orv {

// This program is linked with the calls of the Mac it runs on. The one that is linked with the simulated ones takes
// its place, with the same arguments, and normally never comes back from there.
std::optional<std::string> enterSimulation()
{
    const auto program = helperProgram("orvctl-simulated");
    execv(program.c_str(), *_NSGetArgv());
    return program + ": " + std::strerror(errno);
}

ServiceAnswer askSimulatedMac(Request, const SimulatedMoment&)
{
    return {std::nullopt, *enterSimulation()};
}

std::vector<ServiceAnswer> askSimulatedMacForAll(const SimulatedMoment&)
{
    return std::vector<ServiceAnswer>(requests.size(), {std::nullopt, *enterSimulation()});
}

InspectionAnswer inspectSimulatedMac(const SimulatedMoment&, const std::vector<std::string>&)
{
    return {std::nullopt, *enterSimulation()};
}

std::string watchSimulatedMac(const std::string&, ServiceWatcher&, int)
{
    return *enterSimulation();
}

void cleanAfterSimulatedMac() { }

std::optional<std::string> recordSimulatedMac(
    const std::string&, const std::function<void(const std::string& text)>&, const RecordingPlan&, std::string& fault)
{
    fault = *enterSimulation();
    return std::nullopt;
}

bool replay(const ReplayPlan&, const std::function<bool(const std::string& line)>&, std::string& fault)
{
    fault = *enterSimulation();
    return false;
}

bool readRecording(const std::string&, RecordedReadingsReader&, std::string& fault)
{
    fault = *enterSimulation();
    return false;
}

} // namespace orv
