#pragma once

#include "simulated/ManualRunLoop.h"
#include "simulated/Recording.h"
#include "simulated/RecordingPlayer.h"
#include "simulated/SimulatedPlatform.h"
#include "simulated/SimulatedProfiler.h"

#include <memory>
#include <string>
#include <utility>

namespace orv {

/// The Mac of a machine file or recording on the manual clock, whole in this process. Main thread only.
struct RecordedMac {
    explicit RecordedMac(Recording opened)
        : recording(std::move(opened))
        , profiler(simulation.profilerOutput)
        , simulation(recording.machine(), "", runLoop, profiler)
        , player(recording, simulation)
    {
    }
    /// Ends the cycles under way, which keep their objects alive.
    ~RecordedMac() { runLoop.advance(Seconds(5)); }
    RecordedMac(const RecordedMac&) = delete;
    RecordedMac& operator=(const RecordedMac&) = delete;

    /// The Mac as it is at a moment. Nothing when the file cannot be used; `fault` then is one line.
    static std::unique_ptr<RecordedMac> open(const std::string& path, std::string& fault, double moment = 0)
    {
        auto begun = Recording::begin(path, fault);
        if (!begun)
            return nullptr;
        auto mac = std::make_unique<RecordedMac>(std::move(*begun));
        mac->player.skipTo(moment);
        if (mac->recording.lookThrough())
            return mac;
        fault = mac->recording.fault();
        return nullptr;
    }

    Recording recording;
    ManualRunLoop runLoop;
    SimulatedProfiler profiler;
    SimulatedPlatform simulation;
    RecordingPlayer player;
};

} // namespace orv
