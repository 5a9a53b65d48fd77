#import "macos/CocoaWorkspace.h"

#import "macos/FoundationValue.h"

#import <AppKit/AppKit.h>

#include <algorithm>

/// Turns the workspace's notifications into calls of an observer, which is not owned.
@interface OrvSleepWakeTarget : NSObject
- (instancetype)initWithObserver:(orv::SleepWakeObserver*)observer;
- (void)workspaceDidWakeUp;
- (void)workspaceWillSleep;
@end

@implementation OrvSleepWakeTarget {
    orv::SleepWakeObserver* observer;
}

- (instancetype)initWithObserver:(orv::SleepWakeObserver*)given
{
    self = [super init];
    if (self)
        observer = given;
    return self;
}

- (void)workspaceDidWakeUp
{
    @autoreleasepool {
        observer->workspaceDidWakeUp();
    }
}

- (void)workspaceWillSleep
{
    @autoreleasepool {
        observer->workspaceWillSleep();
    }
}

@end

namespace orv {

void CocoaWorkspace::registerSleepWakeObservers(SleepWakeObserver& observer)
{
    OrvSleepWakeTarget* target = [[OrvSleepWakeTarget alloc] initWithObserver:&observer];
    targets.emplace_back(&observer, target);
    NSNotificationCenter* center = NSWorkspace.sharedWorkspace.notificationCenter;
    [center addObserver:target selector:@selector(workspaceDidWakeUp) name:NSWorkspaceDidWakeNotification object:nil];
    [center addObserver:target selector:@selector(workspaceWillSleep) name:NSWorkspaceWillSleepNotification object:nil];
}

void CocoaWorkspace::removeSleepWakeObservers(SleepWakeObserver& observer)
{
    std::erase_if(targets, [&](const auto& registered) {
        if (registered.first != &observer)
            return false;
        [NSWorkspace.sharedWorkspace.notificationCenter removeObserver:registered.second];
        return true;
    });
}

void CocoaWorkspace::openApplication(const std::string& path)
{
    NSWorkspaceOpenConfiguration* configuration = [[NSWorkspaceOpenConfiguration alloc] init];
    configuration.activates = NO;
    configuration.hides = YES;
    configuration.promptsUserIfNeeded = NO; // every 40 seconds
    configuration.addsToRecentItems = NO;
    [NSWorkspace.sharedWorkspace openApplicationAtURL:[NSURL fileURLWithPath:foundationText(path)]
                                        configuration:configuration
                                    completionHandler:nil];
}

} // namespace orv
