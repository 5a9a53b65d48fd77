#import "examples/menubar/SensorsMenu.h"

static const NSTimeInterval refreshInterval = 5; // the helper measures no more often

int main(void)
{
    @autoreleasepool {
        NSApplication* application = NSApplication.sharedApplication;
        application.activationPolicy = NSApplicationActivationPolicyAccessory;
        NSStatusItem* item = [NSStatusBar.systemStatusBar statusItemWithLength:NSVariableStatusItemLength];
        item.menu = [[NSMenu alloc] init];
        HelperClient* helper = [[HelperClient alloc] init];
        void (^refresh)(NSTimer*) = ^(NSTimer* fired) {
            (void)fired;
            [helper askThen:^(Readings* sensors, Readings* devices) {
                item.button.title = hottestText(sensors);
                fillMenu(item.menu, sensors, devices);
            }];
        };
        // Not of the common modes: an open menu stands still.
        [[NSTimer scheduledTimerWithTimeInterval:refreshInterval repeats:YES block:refresh] fire];
        [application run];
    }
    return 0;
}
