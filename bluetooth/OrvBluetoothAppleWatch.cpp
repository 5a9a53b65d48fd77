#include "bluetooth/OrvBluetoothAppleWatch.h"

#include "base/File.h"
#include "bluetooth/WatchFile.h"
#include "platform/Bundle.h"
#include "platform/JSON.h"

#include <cstddef>
#include <utility>

namespace orv {

namespace {

constexpr Seconds companionTime{5.0}; // for the companion to write its file
constexpr std::size_t largestWatchFile = 1u << 20; // so that no transport meets its own limit

std::optional<BluetoothBatteryDictionary> objectOfObjects(const Value& value)
{
    const auto* entries = value.as<Dictionary>();
    if (!entries)
        return std::nullopt;
    BluetoothBatteryDictionary result;
    for (const auto& [key, entry] : *entries) {
        const auto* object = entry.as<Dictionary>();
        if (!object)
            return std::nullopt;
        result.emplace(key, *object);
    }
    return result;
}

} // namespace

std::shared_ptr<OrvBluetoothAppleWatch> OrvBluetoothAppleWatch::create(const Platform& platform)
{
    const std::shared_ptr<OrvBluetoothAppleWatch> reader(new OrvBluetoothAppleWatch(platform));
    reader->start(reloadInterval);
    return reader;
}

OrvBluetoothAppleWatch& OrvBluetoothAppleWatch::shared()
{
    static auto& reader = *new std::shared_ptr(create(sharedPlatform()));
    return *reader;
}

std::optional<std::string> OrvBluetoothAppleWatch::companionAppURL() const
{
    auto applications = platform.bundle.resources("app");
    if (applications.empty())
        return std::nullopt;
    return std::move(applications.front());
}

std::optional<std::string> OrvBluetoothAppleWatch::watchBatteryFileURL() const
{
    const auto container = platform.bundle.groupContainer(applicationGroupIdentifier);
    if (!container)
        return std::nullopt;
    return *container + watchFileInContainer;
}

bool OrvBluetoothAppleWatch::readWatchBatteryFile()
{
    const auto path = watchBatteryFileURL();
    const auto bytes = path ? readFile(*path, largestWatchFile) : std::nullopt;
    const auto content = bytes ? parseJSON(*bytes) : std::nullopt;
    auto entries = content ? objectOfObjects(*content) : std::nullopt;
    if (!entries)
        return false;
    systemBlueToothDictionary = std::move(*entries);
    return true;
}

OrvBluetoothAppleWatch::OrvBluetoothAppleWatch(const Platform& given)
    : RefreshingSource(given, Refreshed::watchFile)
    , platform(given)
{
}

void OrvBluetoothAppleWatch::beginUpdate()
{
    const auto companion = companionAppURL();
    if (!companion) {
        abandonUpdate();
        return;
    }
    platform.workspace.openApplication(*companion);
    // The reader is kept alive until the file was read: a cycle that has begun always ends.
    platform.runLoop.runAfter(companionTime, [reader = shared_from_this()] {
        if (reader->readWatchBatteryFile())
            reader->finishUpdate();
        else
            reader->abandonUpdate();
    });
}

} // namespace orv
