#include "simulated/ManualRunLoop.h"

#include "base/MainThread.h"

#include <utility>

namespace orv {

namespace {

TimerQueue::Duration nanoseconds(Seconds seconds)
{
    return std::chrono::round<TimerQueue::Duration>(seconds);
}

class ManualTimer final : public Timer {
public:
    ManualTimer(TimerQueue& timerQueue, TimerQueue::Identifier timerIdentifier)
        : queue(timerQueue)
        , identifier(timerIdentifier)
    {
    }
    ~ManualTimer() override { queue.cancel(identifier); }

private:
    TimerQueue& queue;
    TimerQueue::Identifier identifier;
};

} // namespace

std::unique_ptr<Timer> ManualRunLoop::scheduleRepeating(Seconds interval, std::function<void()> fire)
{
    assertMainThread();
    return std::make_unique<ManualTimer>(timers, timers.scheduleRepeating(now, nanoseconds(interval), std::move(fire)));
}

void ManualRunLoop::runAfter(Seconds delay, std::function<void()> run)
{
    assertMainThread();
    timers.scheduleOnce(now, nanoseconds(delay), std::move(run));
}

void ManualRunLoop::post(std::function<void()> run)
{
    const std::lock_guard lock(mutex);
    posted.push_back(std::move(run));
}

void ManualRunLoop::postToBackground(std::function<void()> run)
{
    post(std::move(run));
}

void ManualRunLoop::advance(Seconds time)
{
    assertMainThread();
    const auto end = now + nanoseconds(time);
    takePosted();
    for (auto deadline = timers.nextDeadline(); deadline && *deadline <= end; deadline = timers.nextDeadline()) {
        now = std::max(now, *deadline);
        timers.runDue(now);
        takePosted();
    }
    now = end;
}

void ManualRunLoop::advanceTo(TimerQueue::Instant time)
{
    takePosted();
    for (auto deadline = timers.nextDeadline(); deadline && *deadline < time; deadline = timers.nextDeadline()) {
        now = std::max(now, *deadline);
        timers.runDue(now);
        takePosted();
    }
    now = std::max(now, time);
}

// Posted work runs in its order, after what is due already.
void ManualRunLoop::takePosted()
{
    const std::lock_guard lock(mutex);
    for (auto& run : std::exchange(posted, {}))
        timers.scheduleOnce(now, {}, std::move(run));
}

} // namespace orv
