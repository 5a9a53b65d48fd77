#pragma once

#include "recording/Recorder.h"

#include <functional>
#include <memory>
#include <optional>

namespace orv {

class Timer;

/// How long to record, and what may end it earlier.
struct RecordingPlan {
    std::optional<double> length; // seconds; without: one moment
    double interval = 5; // seconds
    std::function<bool(double reached)> shouldStop; // asked several times a second
};

/// Records a machine in real time until its plan is fulfilled. Main thread only.
class RecordingSession {
public:
    /// `finished` is called once, when everything was written.
    RecordingSession(
        const Platform& platform, RecordingTarget target, RecordingPlan plan, std::function<void()> finished);
    ~RecordingSession();

    void begin();

    const Recorder& recorder() const { return machine; }

private:
    void check();

    RunLoop& runLoop;
    const RecordingPlan plan;
    const std::function<double()> now;
    const std::function<void()> finished;
    Recorder machine;
    std::unique_ptr<Timer> checks;
};

} // namespace orv
