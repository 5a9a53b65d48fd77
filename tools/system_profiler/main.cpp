// Stands behind the system profiler's path: prints a Bluetooth report in the layout of that tool.

#include "platform/simulated/MachineFile.h"
#include "platform/simulated/ProfilerEnvironment.h"

#include <cstdio>
#include <cstdlib>
#include <string>

int main()
{
    const char* path = std::getenv(orv::profilerMachineVariable);
    if (!path)
        return 0;
    std::string fault;
    const auto machine = orv::readMachineFile(path, fault);
    if (!machine) {
        std::fprintf(stderr, "system_profiler: %s\n", fault.c_str());
        return 2;
    }
    const auto& report = machine->profilerOutput;
    const bool isWritten = std::fwrite(report.data(), 1, report.size(), stdout) == report.size();
    return isWritten && std::fflush(stdout) == 0 ? 0 : 1;
}
