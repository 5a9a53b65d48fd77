#pragma once

#include "platform/Platform.h"
#include "readings/Readings.h"
#include "refresh/RefreshingSource.h"

#include <memory>

namespace orv {

/// Keeps the latest battery levels of connected Bluetooth devices: refreshed every 120 seconds, on wake, and when a
/// device connects or a pairing changes. Main thread only.
class OrvBluetoothSysProfile final : public RefreshingSource,
                                     public std::enable_shared_from_this<OrvBluetoothSysProfile> {
public:
    static constexpr Seconds reloadInterval{120.0};

    /// The monitor, registered for its events and with its first refresh under way.
    static std::shared_ptr<OrvBluetoothSysProfile> create(const Platform& platform);
    static OrvBluetoothSysProfile& shared();

    BluetoothBatteryDictionary systemBlueToothDictionary; // the last delivery, also an empty one

    void deviceIsConnected();
    void devicePairedDidChange();

private:
    explicit OrvBluetoothSysProfile(const Platform& platform);
    void registerNotifications();
    void beginUpdate() override;

    const Platform& platform;
};

} // namespace orv
