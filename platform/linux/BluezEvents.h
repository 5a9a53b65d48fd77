#pragma once

#include "platform/BluetoothEvents.h"

namespace orv {

/// Bluetooth devices on Linux.
class BluezEvents final : public BluetoothEvents {
public:
    void observe(std::function<void()>, std::function<void()>) override { }
};

} // namespace orv
