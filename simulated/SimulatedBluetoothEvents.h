#pragma once

#include "base/MainThread.h"
#include "platform/BluetoothEvents.h"

#include <functional>
#include <utility>
#include <vector>

namespace orv {

/// Bluetooth devices that connect and pair when they are told to.
class SimulatedBluetoothEvents final : public BluetoothEvents {
public:
    void observe(std::function<void()> onConnected, std::function<void()> onPairedChanged) override
    {
        assertMainThread();
        connectionObservers.push_back(std::move(onConnected));
        pairingObservers.push_back(std::move(onPairedChanged));
    }

    void connectDevice() const { tell(connectionObservers); }
    void changePairing() const { tell(pairingObservers); }

private:
    static void tell(const std::vector<std::function<void()>>& observers)
    {
        assertMainThread();
        for (const auto& observer : observers)
            observer();
    }

    std::vector<std::function<void()>> connectionObservers;
    std::vector<std::function<void()>> pairingObservers;
};

} // namespace orv
