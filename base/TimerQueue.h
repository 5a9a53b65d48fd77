#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <utility>

namespace orv {

/// What a run loop has still to run, sorted by deadline and, at one instant, by the order of scheduling. It knows no
/// clock: every operation is told the time. One thread only.
class TimerQueue {
public:
    using Duration = std::chrono::nanoseconds;
    using Instant = std::chrono::nanoseconds; // since some fixed start
    using Identifier = std::uint64_t;

    /// How late a thing may run and still count as run on time: near deadlines then share one wake-up.
    static constexpr Duration tolerance = std::chrono::milliseconds(50);

    Identifier scheduleOnce(Instant now, Duration delay, std::function<void()> run);
    Identifier scheduleRepeating(Instant now, Duration interval, std::function<void()> run);
    void cancel(Identifier identifier);

    /// When to wake: the last deadline that lies within the tolerance of the first; nothing when nothing is scheduled.
    std::optional<Instant> nextWakeUp() const;
    /// The first deadline.
    std::optional<Instant> nextDeadline() const;

    /// Runs everything due at `now`, also what becomes due by it.
    void runDue(Instant now);

private:
    struct Item {
        Identifier identifier;
        Duration interval; // zero: once
        std::shared_ptr<std::function<void()>> run;
    };
    using Position = std::pair<Instant, std::uint64_t>;

    Instant countedFrom(Instant now) const;
    void insert(Instant deadline, Item item);

    std::map<Position, Item> items;
    std::uint64_t scheduled = 0;
    Identifier identifiers = 0;
    std::optional<Instant> running; // the deadline of what is running
};

} // namespace orv
