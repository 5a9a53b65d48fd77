#pragma once

namespace orv {

class BluetoothEvents;
class Bundle;
class HIDEventSystem;
class ProcessLauncher;
class RefreshObserver;
class RunLoop;
class Workspace;

/// What a process is given of its operating system. All of it outlives the objects that use it.
struct Platform {
    RunLoop& runLoop;
    Workspace& workspace;
    BluetoothEvents& bluetoothEvents;
    ProcessLauncher& processLauncher;
    Bundle& bundle;
    HIDEventSystem& hidEventSystem;
    RefreshObserver* refreshObserver = nullptr; // optional
};

/// Sets the platform that the `shared` objects use. Once, before the first of them is asked for.
void setSharedPlatform(const Platform& platform);
const Platform& sharedPlatform();

} // namespace orv
