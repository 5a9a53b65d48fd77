#include "linux/XdgBundle.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <utility>

namespace orv {

XdgBundle::XdgBundle(std::string givenIdentifier, std::string installationPrefix)
    : bundleIdentifier(std::move(givenIdentifier))
    , prefix(std::move(installationPrefix))
{
}

std::vector<std::string> XdgBundle::resources(const std::string& extension) const
{
    std::vector<std::string> paths;
    std::error_code error;
    std::filesystem::directory_iterator file(prefix + "/lib/orv/Resources", error);
    for (; !error && file != std::filesystem::directory_iterator(); file.increment(error)) {
        if (file->path().extension() == '.' + extension)
            paths.push_back(file->path().string());
    }
    std::ranges::sort(paths);
    return paths;
}

std::optional<std::string> XdgBundle::groupContainer(const std::string& applicationGroup) const
{
    // The base directory rules have a relative path ignored.
    const char* data = std::getenv("XDG_DATA_HOME");
    if (data && data[0] == '/')
        return std::string(data) + '/' + applicationGroup;
    const char* home = std::getenv("HOME");
    if (home && home[0] == '/')
        return std::string(home) + "/.local/share/" + applicationGroup;
    return std::nullopt;
}

} // namespace orv
