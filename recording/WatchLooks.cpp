#include "recording/WatchLooks.h"

#include "bluetooth/OrvBluetoothAppleWatch.h"
#include "bluetooth/WatchFile.h"

#include <utility>

namespace orv {

std::shared_ptr<WatchLooks> WatchLooks::create(const Platform& platform, std::function<void()> look)
{
    const std::shared_ptr<WatchLooks> looks(new WatchLooks(platform, std::move(look)));
    looks->start(OrvBluetoothAppleWatch::reloadInterval);
    return looks;
}

WatchLooks::WatchLooks(const Platform& given, std::function<void()> whenever)
    : RefreshingSource(given, Refreshed::watchFile)
    , platform(given)
    , look(std::move(whenever))
{
}

void WatchLooks::beginUpdate()
{
    if (!companionApplication(platform.bundle)) {
        abandonUpdate();
        return;
    }
    platform.runLoop.runAfter(OrvBluetoothAppleWatch::companionTime, [looks = weak_from_this()] {
        if (const auto self = looks.lock()) {
            self->look();
            self->finishUpdate();
        }
    });
}

} // namespace orv
