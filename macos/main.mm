#import "macos/AppDelegate.h"
#import "macos/ClientRequirement.h"
#import "macos/CocoaPlatform.h"

// Kept for the life of the process; the listener itself holds its delegate weakly.
NSXPCListener* serviceListener = nil;
AppDelegate* listenerDelegate = nil;

int main()
{
    @autoreleasepool {
        NSString* serviceName = NSBundle.mainBundle.bundleIdentifier;
        if (!serviceName)
            serviceName = @"";
        serviceListener = [[NSXPCListener alloc] initWithMachServiceName:serviceName];
        orv::setSharedPlatform(orv::cocoaPlatform());
        listenerDelegate = [[AppDelegate alloc] init];
        serviceListener.delegate = listenerDelegate;
        orv::requireOfClients(serviceListener);
        [serviceListener resume];
    }
    @autoreleasepool {
        [NSRunLoop.mainRunLoop run];
    }
    return 0;
}
