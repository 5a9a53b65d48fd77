#pragma once

#include "platform/RunLoop.h"
#include "simulated/Recording.h"

#include <atomic>
#include <optional>

namespace orv {

class ManualRunLoop;
struct SimulatedPlatform;

/// Plays a recording's steps into a simulated Mac. Main thread only.
class RecordingPlayer {
public:
    /// Both outlive the player.
    RecordingPlayer(Recording& recording, SimulatedPlatform& simulation);

    /// Takes over what has changed up to a moment, that included, and tells nobody what happened.
    void skipTo(double moment);

    /// Tells of a sleep that had begun before the moment skipped to. Once, when everybody listens.
    void begin();

    /// When the next step is: seconds since the recording's beginning. Nothing after the last.
    std::optional<double> due() const { return next ? std::optional(next->at) : std::nullopt; }

    /// Plays on the manual clock, whose zero is the recording's, up to a moment, that included. A step comes before
    /// everything else that is due at its moment.
    void playTo(double moment, ManualRunLoop& runLoop);

    /// Begins, and plays in real time from the moment skipped to.
    void start(RunLoop& runLoop);

    /// Seconds since the recording's beginning, of what was last played or skipped. Any thread.
    double position() const { return reached; }

private:
    void playStep();
    void scheduleNext(RunLoop& runLoop);

    Recording& recording;
    SimulatedPlatform& simulation;
    std::optional<RecordingStep> next;
    std::atomic<double> reached = 0;
    bool isAsleep = false;
    Seconds origin{}; // the steady clock's time at the recording's zero
};

} // namespace orv
