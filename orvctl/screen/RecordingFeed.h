#pragma once

#include "orvctl/collecting/Playback.h"
#include "orvctl/screen/Feed.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace orv {

/// A recording or a machine file, played at a speed that the user chooses.
class RecordingFeed final : public Feed {
public:
    /// Nothing when the file cannot be used; `fault` then is one line.
    static std::unique_ptr<RecordingFeed> open(const SimulatedMoment& moment, std::string& fault);

    std::string machine() const { return playback->machine(); }
    std::optional<Clock::time_point> due() const override;
    void take(Top& top) override;
    void obey(const Command& command) override;
    Seconds now() const override { return Seconds(playback->position()); }
    std::vector<std::string> explainOptions() const override;

private:
    void hear(const WatchedReplies& replies, double at);
    void seek(double moment);
    void changeSpeed(int by);
    bool isOver() const;
    double speed() const;

    std::string path;
    std::unique_ptr<Playback> playback;
    std::vector<std::pair<WatchedReplies, double>> heard; // since that was last taken
    bool isBegunAnew = false;
    bool isPaused = false;
    std::size_t speedIndex = 1;
    Clock::time_point playedAt = Clock::now();
};

} // namespace orv
