#include "orvctl/collecting/SimulatedClient.h"
#include "orvctl/collecting/SimulatedInspection.h"
#include "orvctl/collecting/SimulatedWatch.h"

#include <crt_externs.h>
#include <mach-o/dyld.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <system_error>

namespace orv {

namespace {

std::filesystem::path ownFile()
{
    std::string path(1024, '\0');
    auto size = static_cast<std::uint32_t>(path.size());
    if (_NSGetExecutablePath(path.data(), &size) != 0) {
        path.resize(size); // which now says how much is needed
        _NSGetExecutablePath(path.data(), &size);
    }
    std::error_code error;
    return std::filesystem::canonical(path.c_str(), error);
}

// This program is linked with the calls of the Mac it runs on. The one that is linked with the simulated ones takes
// its place, with the same arguments, and normally never comes back from there.
std::string runSimulated()
{
    const auto program = ownFile().parent_path().parent_path() / "libexec/orv/orvctl-simulated";
    execv(program.c_str(), *_NSGetArgv());
    return program.string() + ": " + std::strerror(errno);
}

} // namespace

ServiceAnswer askSimulatedMac(Request, const std::string&)
{
    return {std::nullopt, runSimulated()};
}

InspectionAnswer inspectSimulatedMac(const std::string&, const std::vector<std::string>&)
{
    return {std::nullopt, runSimulated()};
}

std::string watchSimulatedMac(const std::string&, ServiceWatcher&, int)
{
    return runSimulated();
}

void cleanAfterSimulatedMac() { }

} // namespace orv
