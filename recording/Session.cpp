#include "recording/Session.h"

#include <utility>

namespace orv {

namespace {

constexpr Seconds checkInterval{0.2};

} // namespace

RecordingSession::RecordingSession(
    const Platform& platform, RecordingTarget target, RecordingPlan givenPlan, std::function<void()> whenFinished)
    : runLoop(platform.runLoop)
    , plan(std::move(givenPlan))
    , now(target.now)
    , finished(std::move(whenFinished))
    , machine(platform, std::move(target))
{
}

RecordingSession::~RecordingSession() = default;

void RecordingSession::begin()
{
    machine.begin(Seconds(plan.interval));
    checks = runLoop.scheduleRepeating(checkInterval, [this] { check(); });
}

void RecordingSession::check()
{
    if (!checks)
        return;
    const bool isOver = plan.length ? now() >= *plan.length : machine.isSettled();
    if (!isOver && !plan.shouldStop(now()))
        return;
    if (plan.length || !isOver)
        machine.end();
    runLoop.post([timer = std::shared_ptr<Timer>(std::move(checks)), whenFinished = finished] { whenFinished(); });
}

} // namespace orv
