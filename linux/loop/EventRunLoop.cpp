#include "linux/loop/EventRunLoop.h"

#include "linux/loop/Clocks.h"

#include <sys/eventfd.h>

#include <cassert>
#include <cerrno>
#include <system_error>
#include <utility>

namespace orv {

namespace {

TimerQueue::Duration nanoseconds(Seconds seconds)
{
    return std::chrono::round<TimerQueue::Duration>(seconds);
}

// sd-event answers with negative error numbers.
void check(int result, const char* what)
{
    if (result < 0)
        throw std::system_error(-result, std::generic_category(), what);
}

} // namespace

class EventRunLoop::LoopTimer final : public Timer {
public:
    LoopTimer(EventRunLoop& runLoop, TimerQueue::Identifier timerIdentifier)
        : loop(runLoop)
        , identifier(timerIdentifier)
    {
    }
    ~LoopTimer() override
    {
        loop.timers.cancel(identifier);
        loop.armTimeSource();
    }

private:
    EventRunLoop& loop;
    TimerQueue::Identifier identifier;
};

EventRunLoop::EventRunLoop()
{
    check(sd_event_new(loop.out()), "cannot create an event loop");
    wakeUp = FileDescriptor(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
    check(wakeUp ? 0 : -errno, "cannot create an event descriptor");
    // The list decides how much later than asked for a thing may run, so the source itself is exact.
    check(sd_event_add_time(event(), timeSource.out(), CLOCK_MONOTONIC, 0, 1, timeReached, this), "cannot add a timer");
    check(sd_event_source_set_enabled(timeSource.get(), SD_EVENT_OFF), "cannot add a timer");
    check(sd_event_add_io(event(), postSource.out(), wakeUp.get(), EPOLLIN, postArrived, this), "cannot add a source");
}

EventRunLoop::~EventRunLoop()
{
    const std::lock_guard lock(mutex);
    while (backgroundWork > 0)
        backgroundEnded.wait(mutex);
}

std::unique_ptr<Timer> EventRunLoop::scheduleRepeating(Seconds interval, std::function<void()> fire)
{
    assertOwnThread();
    const auto identifier = timers.scheduleRepeating(timeAwake(), nanoseconds(interval), std::move(fire));
    armTimeSource();
    return std::make_unique<LoopTimer>(*this, identifier);
}

void EventRunLoop::runAfter(Seconds delay, std::function<void()> run)
{
    assertOwnThread();
    timers.scheduleOnce(timeAwake(), nanoseconds(delay), std::move(run));
    armTimeSource();
}

void EventRunLoop::post(std::function<void()> run)
{
    {
        const std::lock_guard lock(mutex);
        posted.push_back(std::move(run));
    }
    eventfd_write(wakeUp.get(), 1); // with the lock held, who is woken would have to wait for that next
}

void EventRunLoop::postToBackground(std::function<void()> run)
{
    post([this, run = std::move(run)]() mutable { startInBackground(std::move(run)); });
}

void EventRunLoop::startInBackground(std::function<void()> run)
{
    {
        const std::lock_guard lock(mutex);
        ++backgroundWork;
    }
    auto work = [this, run = std::move(run)]() mutable noexcept {
        run();
        run = nullptr; // what it holds goes before the end is told
        endBackgroundWork();
    };
    try {
        std::thread(std::move(work)).detach();
    } catch (const std::system_error&) {
        endBackgroundWork(); // no thread to be had: the work is dropped, as when what it starts cannot be started
    }
}

// No exception may cross sd-event's frames.
int EventRunLoop::run() noexcept
{
    runner = std::this_thread::get_id();
    const int status = sd_event_loop(event());
    return status < 0 ? 1 : status;
}

void EventRunLoop::exit(int status)
{
    post([this, status] {
        int earlierStatus = 0;
        if (sd_event_get_exit_code(event(), &earlierStatus) == -ENODATA)
            sd_event_exit(event(), status);
    });
}

int EventRunLoop::timeReached(sd_event_source*, std::uint64_t, void* loop) noexcept
{
    auto& self = *static_cast<EventRunLoop*>(loop);
    self.timers.runDue(timeAwake());
    self.armTimeSource();
    return 0;
}

int EventRunLoop::postArrived(sd_event_source*, int, std::uint32_t, void* loop) noexcept
{
    auto& self = *static_cast<EventRunLoop*>(loop);
    std::vector<std::function<void()>> arrived;
    {
        const std::lock_guard lock(self.mutex);
        eventfd_t count = 0;
        eventfd_read(self.wakeUp.get(), &count);
        arrived = std::exchange(self.posted, {});
    }
    for (const auto& run : arrived)
        run();
    return 0;
}

void EventRunLoop::endBackgroundWork()
{
    const std::lock_guard lock(mutex);
    --backgroundWork;
    backgroundEnded.notify_all();
}

// What is scheduled before `run` comes before the thread that calls it, or from it.
void EventRunLoop::assertOwnThread() const
{
    assert(runner == std::thread::id() || runner == std::this_thread::get_id());
}

void EventRunLoop::armTimeSource()
{
    const auto next = timers.nextWakeUp();
    if (next) {
        // Rounded up: waking before the deadline would find nothing due.
        const auto microseconds = std::chrono::ceil<std::chrono::microseconds>(*next);
        sd_event_source_set_time(timeSource.get(), static_cast<std::uint64_t>(microseconds.count()));
    }
    sd_event_source_set_enabled(timeSource.get(), next ? SD_EVENT_ONESHOT : SD_EVENT_OFF);
}

} // namespace orv
