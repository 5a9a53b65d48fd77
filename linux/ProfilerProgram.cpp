#include "linux/ProfilerProgram.h"

#include "bluetooth/ZpBluetoothSysProfile.h"
#include "linux/ProgramPaths.h"
#include "simulated/ProfilerEnvironment.h"

#include <filesystem>

namespace orv {

std::map<std::string, LaunchedProgram> hostProfilerProgram()
{
    return {{ZpBluetoothSysProfile::profilerPath, {helperProgram("system_profiler"), {}}}};
}

std::map<std::string, LaunchedProgram> simulatedProfilerProgram(const std::string& machinePath)
{
    auto variable = std::string(profilerMachineVariable) + "=" + std::filesystem::absolute(machinePath).string();
    return {{ZpBluetoothSysProfile::profilerPath, {helperProgram("system_profiler"), {std::move(variable)}}}};
}

} // namespace orv
