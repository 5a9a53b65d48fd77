#import "macos/CocoaPlatform.h"
#include "recording/ThisMac.h"

#include <chrono>
#include <ctime>

namespace orv {

namespace {

// Goes on while the computer sleeps.
double secondsSinceBoot()
{
    return static_cast<double>(clock_gettime_nsec_np(CLOCK_MONOTONIC_RAW)) / 1e9;
}

} // namespace

std::string recordThisMac(const std::function<void(const std::string& text)>& write, const RecordingPlan& plan)
{
    @autoreleasepool {
        const auto now = [beginning = secondsSinceBoot()] { return secondsSinceBoot() - beginning; };
        RecordingSession session(cocoaPlatform(), {write, now}, plan, [] { CFRunLoopStop(CFRunLoopGetMain()); });
        session.begin();
        CFRunLoopRun();
        return session.recorder().summary();
    }
}

} // namespace orv
