#pragma once

#include "orvctl/collecting/SimulatedClient.h"
#include "service/Watching.h"

#include <functional>
#include <memory>
#include <string>

namespace orv {

struct RecordedMac;

/// A recording, or the Mac of a machine file, that is played through the whole server: on, or from another moment.
/// Times are seconds since its beginning. Main thread only.
class Playback {
public:
    /// Told of each refresh, at the moment at which it was.
    using Heard = std::function<void(const WatchedReplies& replies, double at)>;

    /// Begins at a moment. Nothing when the file cannot be used; `fault` then is one line.
    static std::unique_ptr<Playback> open(const SimulatedMoment& moment, Heard heard, std::string& fault);
    ~Playback();

    /// Plays up to a moment that lies ahead.
    void playTo(double moment);
    /// Begins anew, so far before a moment that what is heard on the way to it fills a history. False when the file
    /// cannot be read again; `fault` then is one line.
    bool seek(double moment, std::string& fault);

    double position() const;
    /// 0 for a machine file, which never ends.
    double length() const;
    /// How the machine is called.
    std::string machine() const;

private:
    class Played;

    Playback(std::string path, Heard heard);
    void play(std::unique_ptr<RecordedMac> mac, double moment);

    const std::string path;
    const Heard heard;
    std::unique_ptr<Played> played;
};

} // namespace orv
