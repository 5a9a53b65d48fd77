#include "platform/ProgramPaths.h"

#include <filesystem>
#include <system_error>

namespace orv {

std::string installationPrefix()
{
    std::error_code error;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
    return program.parent_path().parent_path().string();
}

std::string helperProgram(const std::string& name)
{
    return installationPrefix() + "/libexec/orv/" + name;
}

} // namespace orv
