#include "base/TimerQueue.h"

#include "base/Fatal.h"

#include <algorithm>

namespace orv {

TimerQueue::Identifier TimerQueue::scheduleOnce(Instant now, Duration delay, std::function<void()> run)
{
    const auto identifier = ++identifiers;
    insert(countedFrom(now) + std::max(delay, Duration::zero()),
        {identifier, Duration::zero(), std::make_shared<std::function<void()>>(std::move(run))});
    return identifier;
}

TimerQueue::Identifier TimerQueue::scheduleRepeating(Instant now, Duration interval, std::function<void()> run)
{
    if (interval <= Duration::zero())
        fatalError("a repeating timer needs a positive interval");
    const auto identifier = ++identifiers;
    insert(
        countedFrom(now) + interval, {identifier, interval, std::make_shared<std::function<void()>>(std::move(run))});
    return identifier;
}

void TimerQueue::cancel(Identifier identifier)
{
    std::erase_if(items, [&](const auto& entry) { return entry.second.identifier == identifier; });
}

std::optional<TimerQueue::Instant> TimerQueue::nextWakeUp() const
{
    if (items.empty())
        return std::nullopt;
    const auto latest = items.begin()->first.first + tolerance;
    return std::prev(items.upper_bound({latest, UINT64_MAX}))->first.first;
}

std::optional<TimerQueue::Instant> TimerQueue::nextDeadline() const
{
    if (items.empty())
        return std::nullopt;
    return items.begin()->first.first;
}

void TimerQueue::runDue(Instant now)
{
    while (!items.empty() && items.begin()->first.first <= now) {
        const auto deadline = items.begin()->first.first;
        const auto item = items.extract(items.begin()).mapped();
        if (item.interval > Duration::zero()) {
            const auto missed = (now - deadline) / item.interval;
            insert(deadline + (missed + 1) * item.interval, item);
        }
        running = deadline;
        (*item.run)();
        running.reset();
    }
}

// A delay asked for by something that runs on time counts from that thing's deadline, so that what was in step with
// the other timers stays in step with them. On time is judged now: `runDue` was told an earlier instant than this, if
// what ran since then was slow.
TimerQueue::Instant TimerQueue::countedFrom(Instant now) const
{
    const bool isOnTime = running && now - *running <= tolerance;
    return isOnTime ? *running : now;
}

void TimerQueue::insert(Instant deadline, Item item)
{
    items.emplace(Position{deadline, ++scheduled}, std::move(item));
}

} // namespace orv
