#include "simulated/SimulatedBundle.h"

#include "base/FileDescriptor.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h> // mkdtemp, on macOS

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <utility>

namespace orv {

namespace {

constexpr std::string_view placeholder = "XXXXXX"; // of mkdtemp

std::string containerTemplate()
{
    const char* parent = std::getenv("TMPDIR");
    return std::string(parent && *parent ? parent : "/tmp").append("/orv-smc-helper-").append(placeholder);
}

bool writeFile(const std::string& path, const std::string& content)
{
    // Not std::fopen: a child that starts meanwhile would inherit the file.
    const FileDescriptor file(::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, S_IRUSR | S_IWUSR));
    std::string_view unwritten = content;
    while (file && !unwritten.empty()) {
        const auto count = ::write(file.get(), unwritten.data(), unwritten.size());
        if (count < 0 && errno != EINTR)
            return false;
        unwritten.remove_prefix(static_cast<std::size_t>(std::max(count, decltype(count){0})));
    }
    return bool(file);
}

} // namespace

SimulatedBundle::SimulatedBundle(std::string givenIdentifier, std::optional<std::string> givenWatchFile)
    : bundleIdentifier(std::move(givenIdentifier))
    , hasCompanion(givenWatchFile.has_value())
    , watchFile(std::move(givenWatchFile))
    , paths{.container = containerTemplate()}
{
}

SimulatedBundle::~SimulatedBundle()
{
    removeContainer();
}

std::vector<std::string> SimulatedBundle::resources(const std::string& extension) const
{
    if (!hasCompanion || extension != "app")
        return {};
    return {"Companion.app"};
}

std::optional<std::string> SimulatedBundle::groupContainer(const std::string&) const
{
    {
        const std::lock_guard lock(mutex);
        if (state != State::present)
            return std::nullopt;
    }
    return paths.container;
}

void SimulatedBundle::runCompanion()
{
    const std::lock_guard lock(mutex);
    if (!watchFile || state == State::removed || (state == State::absent && !makeContainer()))
        return;
    if (writeFile(paths.unfinished, *watchFile))
        std::rename(paths.unfinished.c_str(), paths.file.c_str());
}

void SimulatedBundle::setWatchFile(std::optional<std::string> content)
{
    hasCompanion = hasCompanion || content;
    bool isWritten = isKeptWritten;
    {
        const std::lock_guard lock(mutex);
        watchFile.swap(content);
        if (!watchFile && state == State::present)
            std::remove(paths.file.c_str());
        isWritten = isWritten || state == State::present;
    }
    if (isWritten)
        runCompanion();
}

void SimulatedBundle::keepWatchFileWritten()
{
    isKeptWritten = true;
    runCompanion();
}

void SimulatedBundle::removeContainer()
{
    const std::lock_guard lock(mutex);
    if (std::exchange(state, State::removed) != State::present)
        return;
    // By name, because listing a folder takes a descriptor, and there may be none.
    for (const auto* path : {&paths.unfinished, &paths.file, &paths.support, &paths.library, &paths.container})
        std::remove(path->c_str());
}

bool SimulatedBundle::makeContainer()
{
    auto& container = paths.container;
    std::ranges::copy(placeholder, container.end() - placeholder.size()); // an attempt that failed may have changed it
    if (!mkdtemp(container.data()))
        return false;
    for (auto* path : {&paths.library, &paths.support, &paths.file, &paths.unfinished})
        std::ranges::copy(container, path->begin());
    for (const auto* folder : {&paths.library, &paths.support})
        mkdir(folder->c_str(), S_IRWXU);
    state = State::present;
    return true;
}

} // namespace orv
