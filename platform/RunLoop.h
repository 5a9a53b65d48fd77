#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace orv {

using Seconds = std::chrono::duration<double>;

/// A scheduled repetition; it ends when this handle is destroyed.
class Timer {
public:
    virtual ~Timer() = default;
};

/// The main loop of the process. Things due at the same instant run in the order in which they were scheduled;
/// each firing of a repeating timer schedules the next one.
class RunLoop {
public:
    virtual ~RunLoop() = default;

    /// Fires on the main thread at start + interval, start + 2 * interval, …; firings missed while the thread was
    /// busy are made up for by one. Main thread only.
    [[nodiscard]] virtual std::unique_ptr<Timer> scheduleRepeating(Seconds interval, std::function<void()> fire) = 0;

    /// Runs once on the main thread after a delay. Main thread only.
    virtual void runAfter(Seconds delay, std::function<void()> run) = 0;

    /// Runs on the main thread, in the order of posting. Any thread.
    virtual void post(std::function<void()> run) = 0;

    /// Runs on a thread other than the main one, beside other such work. Any thread.
    virtual void postToBackground(std::function<void()> run) = 0;
};

} // namespace orv
