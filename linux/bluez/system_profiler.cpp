// Stands behind the system profiler's path: prints a Bluetooth report in the layout of that tool, about this computer
// or about the simulated Mac of a machine file: system_profiler SPBluetoothDataType -json [--simulate FILE --at
// SECONDS]

#include "linux/bluez/BluetoothDevices.h"
#include "simulated/Recording.h"
#include "json/JSONWriter.h"

#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

namespace {

using namespace orv;

int print(const std::string& report)
{
    const bool isWritten = std::fwrite(report.data(), 1, report.size(), stdout) == report.size();
    return isWritten && std::fflush(stdout) == 0 ? 0 : 1;
}

int printSimulatedReport(const char* path, double moment)
{
    std::string fault;
    auto recording = Recording::begin(path, fault);
    const auto report = recording ? recording->profilerOutputAt(moment) : std::string();
    if (recording && recording->fault().empty())
        return print(report);
    if (recording)
        fault = recording->fault();
    std::fprintf(stderr, "system_profiler: %s\n", fault.c_str());
    return 2;
}

int printHostReport()
{
    const char* root = std::getenv("ORV_ROOT");
    const auto devices = uniqueDevices(bluezDevices(), hidDevices(root ? root : ""));
    return print(writeJSON(profilerReport(devices), KeyOrder::asListed) + '\n');
}

} // namespace

int main(int argumentCount, char** arguments)
{
    const bool isSimulated = argumentCount > 4 && std::string_view(arguments[argumentCount - 4]) == "--simulate";
    if (!isSimulated)
        return printHostReport();
    return printSimulatedReport(arguments[argumentCount - 3], std::strtod(arguments[argumentCount - 1], nullptr));
}
