#import "macos/CocoaPlatform.h"

#import "macos/CocoaBluetoothEvents.h"
#import "macos/CocoaBundle.h"
#import "macos/CocoaProcessLauncher.h"
#import "macos/CocoaRunLoop.h"
#import "macos/CocoaWorkspace.h"
#include "macos/IOHIDEventSystem.h"

namespace orv {

namespace {

struct CocoaParts {
    CocoaRunLoop runLoop;
    CocoaWorkspace workspace;
    CocoaBluetoothEvents bluetoothEvents;
    CocoaProcessLauncher processLauncher;
    CocoaBundle bundle;
    IOHIDEventSystem hidEventSystem;
};

} // namespace

const Platform& cocoaPlatform()
{
    static auto& parts = *new CocoaParts;
    static auto& platform = *new Platform{parts.runLoop, parts.workspace, parts.bluetoothEvents, parts.processLauncher,
        parts.bundle, parts.hidEventSystem};
    return platform;
}

} // namespace orv
