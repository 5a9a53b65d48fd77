#include "platform/simulated/SimulatedBundle.h"

#include <unistd.h> // mkdtemp, on macOS

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <utility>

namespace orv {

namespace {

std::string watchFolder(const std::string& container)
{
    return container + "/Library/Application Support";
}

std::string temporaryFolder()
{
    const char* parent = std::getenv("TMPDIR");
    auto path = std::string(parent && *parent ? parent : "/tmp") + "/orv-smc-helper-XXXXXX";
    if (!mkdtemp(path.data()))
        throw std::system_error(errno, std::generic_category(), "cannot create the folder " + path);
    return path;
}

bool writeFile(const std::string& path, const std::string& content)
{
    auto* const file = std::fopen(path.c_str(), "wb");
    if (!file)
        return false;
    const bool isWritten = std::fwrite(content.data(), 1, content.size(), file) == content.size();
    return std::fclose(file) == 0 && isWritten;
}

} // namespace

SimulatedBundle::SimulatedBundle(std::string givenIdentifier, std::optional<std::string> givenWatchFile)
    : bundleIdentifier(std::move(givenIdentifier))
    , watchFile(std::move(givenWatchFile))
{
    if (!watchFile)
        return;
    container = temporaryFolder();
    std::error_code error;
    std::filesystem::create_directories(watchFolder(container), error);
}

SimulatedBundle::~SimulatedBundle()
{
    removeContainer();
}

std::vector<std::string> SimulatedBundle::resources(const std::string& extension) const
{
    if (!watchFile || extension != "app")
        return {};
    return {container + "/Companion.app"};
}

std::optional<std::string> SimulatedBundle::groupContainer(const std::string&) const
{
    return watchFile ? std::optional(container) : std::nullopt;
}

void SimulatedBundle::runCompanion() const
{
    if (!watchFile)
        return;
    const auto path = watchFolder(container) + "/applewatchbt.json";
    const auto unfinished = path + ".new";
    if (writeFile(unfinished, *watchFile))
        std::rename(unfinished.c_str(), path.c_str());
}

void SimulatedBundle::removeContainer() const
{
    std::error_code error;
    if (!container.empty())
        std::filesystem::remove_all(container, error);
}

} // namespace orv
