#import "macos/CocoaRunLoop.h"

#include "base/MainThread.h"

#import <Foundation/Foundation.h>
#include <dispatch/dispatch.h>

#include <utility>

/// Turns a timer's selector into a call.
@interface OrvTimerTarget : NSObject
- (instancetype)initWithFire:(std::function<void()>)fire;
- (void)updateData;
@end

@implementation OrvTimerTarget {
    std::function<void()> fire;
}

- (instancetype)initWithFire:(std::function<void()>)given
{
    self = [super init];
    if (self)
        fire = std::move(given);
    return self;
}

- (void)updateData
{
    @autoreleasepool {
        fire();
    }
}

@end

namespace orv {

namespace {

/// The run loop keeps the timer and the timer its target, until it is invalidated.
class CocoaTimer final : public Timer {
public:
    explicit CocoaTimer(NSTimer* scheduled)
        : timer(scheduled)
    {
    }
    CocoaTimer(const CocoaTimer&) = delete;
    CocoaTimer& operator=(const CocoaTimer&) = delete;
    ~CocoaTimer() override { [timer invalidate]; }

private:
    NSTimer* timer;
};

dispatch_block_t workItem(std::function<void()> run)
{
    return ^{
        @autoreleasepool {
            run();
        }
    };
}

} // namespace

std::unique_ptr<Timer> CocoaRunLoop::scheduleRepeating(Seconds interval, std::function<void()> fire)
{
    assertMainThread();
    OrvTimerTarget* target = [[OrvTimerTarget alloc] initWithFire:std::move(fire)];
    return std::make_unique<CocoaTimer>([NSTimer scheduledTimerWithTimeInterval:interval.count()
                                                                         target:target
                                                                       selector:@selector(updateData)
                                                                       userInfo:nil
                                                                        repeats:YES]);
}

void CocoaRunLoop::runAfter(Seconds delay, std::function<void()> run)
{
    const auto nanoseconds = std::chrono::duration_cast<std::chrono::nanoseconds>(delay).count();
    dispatch_after(dispatch_time(DISPATCH_TIME_NOW, nanoseconds), dispatch_get_main_queue(), workItem(std::move(run)));
}

void CocoaRunLoop::post(std::function<void()> run)
{
    dispatch_async(dispatch_get_main_queue(), workItem(std::move(run)));
}

void CocoaRunLoop::postToBackground(std::function<void()> run)
{
    dispatch_async(dispatch_get_global_queue(QOS_CLASS_DEFAULT, 0), workItem(std::move(run)));
}

} // namespace orv
