#include "linux/ProfilerProgram.h"

#include "bluetooth/ZpBluetoothSysProfile.h"
#include "platform/ProgramPaths.h"

#include <cstdio>
#include <filesystem>
#include <utility>

namespace orv {

std::map<std::string, LaunchedProgram> hostProfilerProgram()
{
    return {{ZpBluetoothSysProfile::profilerPath, {helperProgram("system_profiler"), {}}}};
}

std::map<std::string, LaunchedProgram> simulatedProfilerProgram(
    const std::string& machinePath, std::function<double()> moment)
{
    const auto momentArgument = [moment = std::move(moment)]() -> std::vector<std::string> {
        char seconds[32];
        std::snprintf(seconds, sizeof(seconds), "%.17g", moment());
        return {"--at", seconds};
    };
    return {{ZpBluetoothSysProfile::profilerPath,
        {helperProgram("system_profiler"), {"--simulate", std::filesystem::absolute(machinePath).string()},
            momentArgument}}};
}

} // namespace orv
