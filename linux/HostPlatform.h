#pragma once

#include "linux/LoginWorkspace.h"
#include "linux/NoHIDEventSystem.h"
#include "linux/XdgBundle.h"
#include "linux/bluez/BluezEvents.h"
#include "linux/bus/SystemBus.h"
#include "linux/drivers/HostHardware.h"
#include "platform/Platform.h"

#include <memory>
#include <string>

namespace orv {

class EventRunLoop;
class SpawnLauncher;
class Timer;

/// The machine that the program runs on, with everything around it except the run loop and the launcher.
class HostPlatform {
public:
    /// Puts the machine behind the IOKit and sysctl calls. Its /sys and /proc are looked up below `root`.
    HostPlatform(
        const std::string& root, const std::string& identifier, EventRunLoop& runLoop, SpawnLauncher& launcher);
    ~HostPlatform();
    HostPlatform(const HostPlatform&) = delete;
    HostPlatform& operator=(const HostPlatform&) = delete;

private:
    void tick();

    SysfsAttributes attributes;
    HostHardware hardware;
    SystemBus systemBus;
    LoginWorkspace workspace;
    BluezEvents bluetoothEvents;
    XdgBundle bundle;
    NoHIDEventSystem hidEventSystem;
    std::unique_ptr<Timer> ticks;

public:
    Platform platform;
};

} // namespace orv
