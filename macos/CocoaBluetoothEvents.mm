#import "macos/CocoaBluetoothEvents.h"

#import <Foundation/Foundation.h>
#import <IOBluetooth/IOBluetooth.h>
#include <dispatch/dispatch.h>

#include <utility>

/// Turns Bluetooth notifications into calls on the main thread. It lives as long as the process.
@interface OrvBluetoothTarget : NSObject
- (instancetype)initWithConnected:(std::function<void()>)connected pairedChanged:(std::function<void()>)pairedChanged;
- (void)deviceIsConnected;
- (void)devicePairedDidChange;
@end

@implementation OrvBluetoothTarget {
    std::function<void()> onConnected;
    std::function<void()> onPairedChanged;
}

- (instancetype)initWithConnected:(std::function<void()>)connected pairedChanged:(std::function<void()>)pairedChanged
{
    self = [super init];
    if (self) {
        onConnected = std::move(connected);
        onPairedChanged = std::move(pairedChanged);
    }
    return self;
}

- (void)deviceIsConnected
{
    @autoreleasepool {
        onConnected();
    }
}

// Unlike the connect notifications this one comes on whatever thread posts it.
- (void)devicePairedDidChange
{
    if (!NSThread.isMainThread) {
        dispatch_async(dispatch_get_main_queue(), ^{ [self devicePairedDidChange]; });
        return;
    }
    @autoreleasepool {
        onPairedChanged();
    }
}

@end

namespace orv {

void CocoaBluetoothEvents::observe(std::function<void()> onConnected, std::function<void()> onPairedChanged)
{
    OrvBluetoothTarget* target = [[OrvBluetoothTarget alloc] initWithConnected:std::move(onConnected)
                                                                 pairedChanged:std::move(onPairedChanged)];
    targets.push_back(target);
    // The registration stays in force without the object that the call returns.
    [IOBluetoothDevice registerForConnectNotifications:target selector:@selector(deviceIsConnected)];
    [NSNotificationCenter.defaultCenter addObserver:target
                                           selector:@selector(devicePairedDidChange)
                                               name:@"com.apple.bluetooth.devicePaired"
                                             object:nil];
}

} // namespace orv
