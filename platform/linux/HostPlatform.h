#pragma once

#include "platform/HIDEventSystem.h"
#include "platform/Platform.h"
#include "platform/linux/BluezEvents.h"
#include "platform/linux/HostHardware.h"
#include "platform/linux/LoginWorkspace.h"
#include "platform/linux/XdgBundle.h"

#include <string>

namespace orv {

/// Linux has no HID temperature services: no machine that it runs on is asked for them in vain.
class NoHIDEventSystem final : public HIDEventSystem {
public:
    bool forEachService(std::int32_t, std::int32_t, const std::function<void(HIDService&)>&) override { return true; }
};

/// The machine that the program runs on, with everything around it except the run loop and the launcher.
struct HostPlatform {
    /// Puts the machine behind the IOKit and sysctl calls.
    HostPlatform(
        const std::string& root, const std::string& identifier, RunLoop& runLoop, ProcessLauncher& processLauncher)
        : hardware(root)
        , bundle(identifier)
        , platform{runLoop, workspace, bluetoothEvents, processLauncher, bundle, hidEventSystem}
    {
        setHardware(hardware);
    }
    HostPlatform(const HostPlatform&) = delete;
    HostPlatform& operator=(const HostPlatform&) = delete;

    HostHardware hardware;
    LoginWorkspace workspace;
    BluezEvents bluetoothEvents;
    XdgBundle bundle;
    NoHIDEventSystem hidEventSystem;
    const Platform platform;
};

} // namespace orv
