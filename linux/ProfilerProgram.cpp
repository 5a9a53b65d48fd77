#include "linux/ProfilerProgram.h"

#include "bluetooth/ZpBluetoothSysProfile.h"
#include "linux/ProgramPaths.h"

#include <filesystem>

namespace orv {

std::map<std::string, LaunchedProgram> hostProfilerProgram()
{
    return {{ZpBluetoothSysProfile::profilerPath, {helperProgram("system_profiler"), {}}}};
}

std::map<std::string, LaunchedProgram> simulatedProfilerProgram(const std::string& machinePath)
{
    return {{ZpBluetoothSysProfile::profilerPath,
        {helperProgram("system_profiler"), {"--simulate", std::filesystem::absolute(machinePath).string()}}}};
}

} // namespace orv
