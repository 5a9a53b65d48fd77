#include "platform/simulated/SimulatedBundle.h"

#include <unistd.h> // mkdtemp, on macOS

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

std::string watchPath(const std::string& container)
{
    return watchFolder(container) + "/applewatchbt.json";
}

std::string unfinished(const std::string& path)
{
    return path + ".new";
}

std::optional<std::string> temporaryContainer()
{
    const char* parent = std::getenv("TMPDIR");
    auto path = std::string(parent && *parent ? parent : "/tmp") + "/orv-smc-helper-XXXXXX";
    if (!mkdtemp(path.data()))
        return std::nullopt;
    std::error_code error;
    std::filesystem::create_directories(watchFolder(path), error);
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

void replaceFile(const std::string& path, const std::string& content)
{
    const auto written = unfinished(path);
    if (writeFile(written, content))
        std::rename(written.c_str(), path.c_str());
}

// By name, because listing a folder takes a descriptor, and there may be none.
void removeFolders(const std::string& container)
{
    const auto file = watchPath(container);
    for (const auto& path : {unfinished(file), file, watchFolder(container), container + "/Library", container})
        std::remove(path.c_str());
}

} // namespace

SimulatedBundle::SimulatedBundle(std::string givenIdentifier, std::optional<std::string> givenWatchFile)
    : bundleIdentifier(std::move(givenIdentifier))
    , watchFile(std::move(givenWatchFile))
{
}

SimulatedBundle::~SimulatedBundle()
{
    removeContainer();
}

std::vector<std::string> SimulatedBundle::resources(const std::string& extension) const
{
    if (!watchFile || extension != "app")
        return {};
    return {"Companion.app"};
}

std::optional<std::string> SimulatedBundle::groupContainer(const std::string&) const
{
    const std::lock_guard lock(mutex);
    return container;
}

void SimulatedBundle::runCompanion()
{
    const std::lock_guard lock(mutex);
    if (!watchFile || isRemoved)
        return;
    if (!container)
        container = temporaryContainer();
    if (container)
        replaceFile(watchPath(*container), *watchFile);
}

void SimulatedBundle::removeContainer()
{
    const std::lock_guard lock(mutex);
    isRemoved = true;
    if (container)
        removeFolders(*container);
    container.reset();
}

} // namespace orv
