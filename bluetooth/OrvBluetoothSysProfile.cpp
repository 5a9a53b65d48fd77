#include "bluetooth/OrvBluetoothSysProfile.h"

#include "bluetooth/ZpBluetoothSysProfile.h"
#include "platform/BluetoothEvents.h"

#include <utility>

namespace orv {

std::shared_ptr<OrvBluetoothSysProfile> OrvBluetoothSysProfile::create(const Platform& platform)
{
    const std::shared_ptr<OrvBluetoothSysProfile> monitor(new OrvBluetoothSysProfile(platform));
    monitor->registerNotifications();
    monitor->start(reloadInterval);
    return monitor;
}

OrvBluetoothSysProfile& OrvBluetoothSysProfile::shared()
{
    static auto& monitor = *new std::shared_ptr(create(sharedPlatform()));
    return *monitor;
}

void OrvBluetoothSysProfile::deviceIsConnected()
{
    updateData();
}

void OrvBluetoothSysProfile::devicePairedDidChange()
{
    updateData();
}

OrvBluetoothSysProfile::OrvBluetoothSysProfile(const Platform& given)
    : RefreshingSource(given, Refreshed::bluetoothReport)
    , platform(given)
{
}

void OrvBluetoothSysProfile::registerNotifications()
{
    const auto whenAlive = [monitor = weak_from_this()](void (OrvBluetoothSysProfile::*operation)()) {
        return [monitor, operation] {
            if (const auto alive = monitor.lock())
                (alive.get()->*operation)();
        };
    };
    platform.bluetoothEvents.observe(whenAlive(&OrvBluetoothSysProfile::deviceIsConnected),
        whenAlive(&OrvBluetoothSysProfile::devicePairedDidChange));
}

// A profiler that cannot be started never delivers, and then this refresh is the last one: there is no time-out.
void OrvBluetoothSysProfile::beginUpdate()
{
    const auto deliver = [monitor = weak_from_this()](BluetoothBatteryDictionary levels) {
        const auto alive = monitor.lock();
        if (!alive)
            return;
        alive->systemBlueToothDictionary = std::move(levels);
        alive->finishUpdate();
    };
    ZpBluetoothSysProfile::fetchBatteryLevels(platform.runLoop, platform.processLauncher, deliver);
}

} // namespace orv
