#pragma once

#include "base/ThreadSafety.h"
#include "base/TimerQueue.h"
#include "platform/RunLoop.h"

#include <functional>
#include <memory>
#include <mutex>
#include <vector>

namespace orv {

/// A run loop whose clock stands still until it is advanced. Background work takes its turn like posted work.
class ManualRunLoop final : public RunLoop {
public:
    std::unique_ptr<Timer> scheduleRepeating(Seconds interval, std::function<void()> fire) override;
    void runAfter(Seconds delay, std::function<void()> run) override;
    void post(std::function<void()> run) override;
    void postToBackground(std::function<void()> run) override;

    /// Lets time pass, running what falls due at the instant at which it does.
    void advance(Seconds time);
    /// Lets time pass until a time, short of what is due then.
    void advanceTo(TimerQueue::Instant time);
    /// Runs what is due now.
    void runPending() { advance(Seconds::zero()); }

    /// The time passed since the loop was made.
    TimerQueue::Instant now{};

private:
    void takePosted();

    TimerQueue timers;
    std::mutex mutex;
    std::vector<std::function<void()>> posted ORV_GUARDED_BY(mutex);
};

} // namespace orv
