#pragma once

#include "platform/BluetoothEvents.h"

#include <vector>

@class OrvBluetoothTarget;

namespace orv {

/// IOBluetooth's connect notifications, and the pairing notification of the process's own center.
class CocoaBluetoothEvents final : public BluetoothEvents {
public:
    void observe(std::function<void()> onConnected, std::function<void()> onPairedChanged) override;

private:
    // Neither sender keeps its observers.
    std::vector<OrvBluetoothTarget*> targets;
};

} // namespace orv
