#pragma once

#include "base/FileDescriptor.h"
#include "base/ThreadSafety.h"
#include "base/TimerQueue.h"
#include "linux/loop/EventHandles.h"
#include "platform/RunLoop.h"

#include <systemd/sd-event.h>

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace orv {

/// A run loop on sd-event and CLOCK_MONOTONIC. The thread that calls `run` is its main thread. Its own sorted list
/// stands behind one sd-event timer, because sd-event leaves the order of equal times open. An exception that leaves
/// what it runs, on whatever thread, ends the program by std::terminate.
class EventRunLoop final : public RunLoop {
public:
    /// Throws std::system_error when the kernel has no descriptor left.
    EventRunLoop();
    /// Waits for background work to end.
    ~EventRunLoop() override;

    std::unique_ptr<Timer> scheduleRepeating(Seconds interval, std::function<void()> fire) override;
    void runAfter(Seconds delay, std::function<void()> run) override;
    void post(std::function<void()> run) override;
    /// Starts it from the loop: what is asked for during start-up waits until `run`, and does not compete with it.
    void postToBackground(std::function<void()> run) override;

    /// Runs until `exit`; returns its status.
    int run() noexcept;
    /// Ends the loop after what is running now. Any thread; the first status counts.
    void exit(int status);

    /// For further sources on the loop's own thread.
    sd_event* event() const { return loop.get(); }

private:
    class LoopTimer;

    static int timeReached(sd_event_source*, std::uint64_t, void* loop) noexcept;
    static int postArrived(sd_event_source*, int, std::uint32_t, void* loop) noexcept;
    void startInBackground(std::function<void()> run);
    void endBackgroundWork();
    void armTimeSource();
    void assertOwnThread() const;

    Event loop;
    FileDescriptor wakeUp; // an eventfd
    EventSource timeSource;
    EventSource postSource;
    TimerQueue timers;
    std::thread::id runner; // what `run` was called on

    std::mutex mutex;
    std::vector<std::function<void()>> posted ORV_GUARDED_BY(mutex);
    int backgroundWork ORV_GUARDED_BY(mutex) = 0;
    std::condition_variable_any backgroundEnded;
};

} // namespace orv
