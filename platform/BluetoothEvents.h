#pragma once

#include <functional>

namespace orv {

/// Connections and pairing changes of Bluetooth devices.
class BluetoothEvents {
public:
    virtual ~BluetoothEvents() = default;

    /// Both are called on the main thread, for the life of the process. Main thread only.
    virtual void observe(std::function<void()> onConnected, std::function<void()> onPairedChanged) = 0;
};

} // namespace orv
