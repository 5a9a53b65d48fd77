#include "bluetooth/WatchFile.h"

#include "base/File.h"
#include "platform/JSON.h"

#include <utility>

namespace orv {

namespace {

constexpr std::size_t largestWatchFile = 1u << 20; // so that no transport meets its own limit

WatchFileOutcome takeEntries(WatchFile& file)
{
    const auto* members = file.content.as<Dictionary>();
    if (!members)
        return WatchFileOutcome::notObjects;
    for (const auto& [key, entry] : *members) {
        const auto* object = entry.as<Dictionary>();
        if (!object) {
            file.member = key;
            file.entries.clear();
            return WatchFileOutcome::notObjects;
        }
        file.entries.emplace(key, *object);
    }
    return WatchFileOutcome::read;
}

WatchFileOutcome take(std::optional<std::string> bytes, WatchFile& file)
{
    if (!bytes)
        return WatchFileOutcome::noFile;
    file.bytes = std::move(*bytes);
    auto content = parseJSON(file.bytes, &file.faultPosition);
    if (!content)
        return WatchFileOutcome::notJSON;
    file.content = std::move(*content);
    return takeEntries(file);
}

} // namespace

std::optional<std::string> companionApplication(const Bundle& bundle)
{
    auto applications = bundle.resources("app");
    if (applications.empty())
        return std::nullopt;
    return std::move(applications.front());
}

std::optional<std::string> watchFilePath(const Bundle& bundle)
{
    const auto container = bundle.groupContainer(applicationGroupIdentifier);
    if (!container)
        return std::nullopt;
    return *container + watchFileInContainer;
}

WatchFile readWatchFile(const Bundle& bundle)
{
    WatchFile file;
    const auto path = watchFilePath(bundle);
    if (!path)
        return file;
    file.path = *path;
    file.outcome = take(readFile(*path, largestWatchFile), file);
    return file;
}

} // namespace orv
