#include "bluetooth/OrvBluetoothAppleWatch.h"

#include "bluetooth/WatchFile.h"

#include <utility>

namespace orv {

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
    return companionApplication(platform.bundle);
}

std::optional<std::string> OrvBluetoothAppleWatch::watchBatteryFileURL() const
{
    return watchFilePath(platform.bundle);
}

bool OrvBluetoothAppleWatch::readWatchBatteryFile()
{
    auto file = readWatchFile(platform.bundle);
    if (file.outcome != WatchFileOutcome::read)
        return false;
    systemBlueToothDictionary = std::move(file.entries);
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
