#import "platform/macos/CocoaPlatform.h"

#import "platform/macos/CocoaBluetoothEvents.h"
#import "platform/macos/CocoaBundle.h"
#import "platform/macos/CocoaProcessLauncher.h"
#import "platform/macos/CocoaRunLoop.h"
#import "platform/macos/CocoaWorkspace.h"
#include "platform/macos/IOHIDEventSystem.h"

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
