#include "simulated/RecordingPlayer.h"

#include "simulated/ManualRunLoop.h"
#include "simulated/SimulatedPlatform.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace orv {

namespace {

Seconds steadyTime()
{
    return std::chrono::steady_clock::now().time_since_epoch();
}

TimerQueue::Instant instant(double moment)
{
    return std::chrono::round<TimerQueue::Instant>(Seconds(moment));
}

} // namespace

RecordingPlayer::RecordingPlayer(Recording& played, SimulatedPlatform& mac)
    : recording(played)
    , simulation(mac)
    , next(played.next())
{
}

void RecordingPlayer::skipTo(double moment)
{
    for (; next && next->at <= moment; next = recording.next()) {
        simulation.apply(*next);
        if (next->event == RecordedEvent::sleep || next->event == RecordedEvent::wake)
            isAsleep = next->event == RecordedEvent::sleep;
    }
    reached = moment;
}

void RecordingPlayer::begin()
{
    if (isAsleep)
        simulation.announce(RecordedEvent::sleep);
}

void RecordingPlayer::playTo(double moment, ManualRunLoop& runLoop)
{
    while (next && next->at <= moment) {
        runLoop.advanceTo(instant(next->at));
        playStep();
    }
    runLoop.advance(instant(moment) - runLoop.now);
    reached = moment;
}

void RecordingPlayer::start(RunLoop& runLoop)
{
    origin = steadyTime() - Seconds(reached);
    begin();
    scheduleNext(runLoop);
}

void RecordingPlayer::playStep()
{
    const auto step = std::exchange(next, recording.next());
    reached = step->at;
    simulation.apply(*step);
    if (step->event)
        simulation.announce(*step->event);
}

// Measured from the origin each time, so that no lateness adds up over a day.
void RecordingPlayer::scheduleNext(RunLoop& runLoop)
{
    if (!next)
        return;
    runLoop.runAfter(std::max(Seconds::zero(), origin + Seconds(next->at) - steadyTime()), [this, &runLoop] {
        playStep();
        scheduleNext(runLoop);
    });
}

} // namespace orv
