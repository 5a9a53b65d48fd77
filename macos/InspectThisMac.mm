#include "explain/ThisMac.h"

#import "macos/CocoaBundle.h"
#import "macos/CocoaProcessLauncher.h"
#include "macos/IOHIDEventSystem.h"
#include "thermal/ZpSystemInfo.h"

namespace orv {

namespace {

// The helper's own bundle, whose resources hold the companion: installed beside bin/, or built beside this program.
NSBundle* helperBundle()
{
    NSURL* folder = NSBundle.mainBundle.executableURL.URLByResolvingSymlinksInPath.URLByDeletingLastPathComponent;
    for (NSString* place in @[ @"../Applications/OrvSMCHelper.app", @"OrvSMCHelper.app" ]) {
        NSBundle* bundle = [NSBundle bundleWithURL:[folder URLByAppendingPathComponent:place]];
        if (bundle)
            return bundle;
    }
    return NSBundle.mainBundle;
}

} // namespace

InspectionAnswer inspectThisMac(const std::vector<std::string>& wantedKeys)
{
    @autoreleasepool {
        IOHIDEventSystem hidEventSystem;
        CocoaProcessLauncher launcher;
        const CocoaBundle bundle(helperBundle());
        return {InspectedMac{inspect({hidEventSystem, launcher, bundle}, wantedKeys), {}}, {}};
    }
}

std::string modelOfThisMac()
{
    return ZpSystemInfo::modelIdentifier();
}

} // namespace orv
