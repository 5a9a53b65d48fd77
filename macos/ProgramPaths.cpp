#include "platform/ProgramPaths.h"

#include <mach-o/dyld.h>

#include <cstdint>
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

} // namespace

std::string installationPrefix()
{
    return ownFile().parent_path().parent_path().string();
}

std::string helperProgram(const std::string& name)
{
    return installationPrefix() + "/libexec/orv/" + name;
}

} // namespace orv
