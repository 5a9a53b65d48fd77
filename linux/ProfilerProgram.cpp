#include "linux/ProfilerProgram.h"

#include "linux/ProgramPaths.h"
#include "simulated/ProfilerEnvironment.h"

#include <filesystem>

namespace orv {

namespace {

constexpr const char* systemProfiler = "/usr/sbin/system_profiler";

} // namespace

std::map<std::string, LaunchedProgram> hostProfilerProgram()
{
    return {{systemProfiler, {helperProgram("system_profiler"), {}}}};
}

std::map<std::string, LaunchedProgram> simulatedProfilerProgram(const std::string& machinePath)
{
    auto variable = std::string(profilerMachineVariable) + "=" + std::filesystem::absolute(machinePath).string();
    return {{systemProfiler, {helperProgram("system_profiler"), {std::move(variable)}}}};
}

} // namespace orv
