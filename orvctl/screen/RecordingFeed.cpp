#include "orvctl/screen/RecordingFeed.h"

#include "service/OrvSMCHelperServer.h"

#include <fmt/core.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace orv {

namespace {

constexpr std::array speeds{0.5, 1.0, 2.0, 5.0, 10.0, 20.0, 50.0, 100.0, 200.0, 500.0, 1000.0};
constexpr double interval = OrvSMCHelperServer::reloadInterval.count();
constexpr double longestWait = 1; // seconds, in which an age changes
constexpr double shortestWait = 0.05;

} // namespace

std::unique_ptr<RecordingFeed> RecordingFeed::open(const SimulatedMoment& moment, std::string& fault)
{
    auto feed = std::make_unique<RecordingFeed>();
    feed->path = *moment.path;
    feed->playback = Playback::open(
        moment, [&self = *feed](const WatchedReplies& replies, double at) { self.hear(replies, at); }, fault);
    return feed->playback ? std::move(feed) : nullptr;
}

void RecordingFeed::hear(const WatchedReplies& replies, double at)
{
    heard.emplace_back(replies, at);
}

bool RecordingFeed::isOver() const
{
    return playback->length() > 0 && playback->position() >= playback->length();
}

double RecordingFeed::speed() const
{
    return speeds[speedIndex];
}

std::optional<Clock::time_point> RecordingFeed::due() const
{
    if (!heard.empty())
        return playedAt;
    if (isPaused || isOver())
        return std::nullopt;
    const Seconds wait(std::clamp(interval / speed(), shortestWait, longestWait));
    return playedAt + std::chrono::duration_cast<Clock::duration>(wait);
}

// Time in which the program was stopped is not made up for.
void RecordingFeed::take(Top& top)
{
    const auto now = Clock::now();
    const auto passed = std::min(Seconds(now - playedAt).count(), 1.5 * longestWait);
    playedAt = now;
    if (!isPaused && !isOver()) {
        const auto target = playback->position() + passed * speed();
        playback->playTo(playback->length() > 0 ? std::min(target, playback->length()) : target);
    }
    if (std::exchange(isBegunAnew, false))
        top.beginAnew();
    for (const auto& [replies, at] : std::exchange(heard, {}))
        top.arrived(topReadings(replies), replies.timing, Seconds(at));
    top.played({playback->position(), playback->length(), speed(), isPaused});
}

void RecordingFeed::obey(const Command& command)
{
    const auto position = playback->position();
    switch (command.kind) {
    case Command::Kind::pause:
        isPaused = !isPaused;
        return;
    case Command::Kind::step: {
        isPaused = true;
        const auto next = (std::floor(position / interval) + 1) * interval;
        return playback->playTo(playback->length() > 0 ? std::min(next, playback->length()) : next);
    }
    case Command::Kind::seek:
        return seek(position + command.amount);
    case Command::Kind::seekTo:
        return seek(playback->length() * command.amount);
    case Command::Kind::slower:
        return changeSpeed(-1);
    case Command::Kind::faster:
        return changeSpeed(1);
    default:
        return;
    }
}

void RecordingFeed::seek(double moment)
{
    if (playback->length() > 0)
        moment = std::min(moment, playback->length());
    heard.clear();
    isBegunAnew = true;
    playback->seek(std::max(moment, 0.0), fault);
    playedAt = Clock::now();
}

void RecordingFeed::changeSpeed(int by)
{
    const auto index = std::clamp(static_cast<int>(speedIndex) + by, 0, static_cast<int>(speeds.size()) - 1);
    speedIndex = static_cast<std::size_t>(index);
}

std::vector<std::string> RecordingFeed::explainOptions() const
{
    return {"--simulate", path, "--at", fmt::format("{:.3f}", std::min(playback->position(), playback->length()))};
}

} // namespace orv
