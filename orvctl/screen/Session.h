#pragma once

#include "base/ThreadSafety.h"
#include "orvctl/screen/Explainer.h"
#include "orvctl/screen/Feed.h"
#include "orvctl/screen/HeldComplaints.h"
#include "orvctl/screen/Screen.h"
#include "orvctl/screen/Signals.h"

#include <mutex>

namespace orv {

/// The live view on a terminal, from taking it over to giving it back.
class Session {
public:
    Session(Top& top, Feed& feed, std::string orvctl, bool hasColour);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /// Until it is ended by a key, a signal, the terminal or the feed.
    void run();

private:
    bool isGoingOn();
    void draw() ORV_REQUIRES(mutex);
    void wait();
    void takeKeys(short events) ORV_REQUIRES(mutex);
    void obey(const Command& command) ORV_REQUIRES(mutex);
    void takeSignals() ORV_REQUIRES(mutex);
    void stop() ORV_REQUIRES(mutex);
    int timeLeft();

    Top& top;
    Feed& feed;
    Explainer explainer;
    Signals signals;
    HeldComplaints complaints;
    std::mutex mutex; // held for all that follows, the view and the feed
    Screen screen ORV_GUARDED_BY(mutex);
    bool isOver = false;
};

} // namespace orv
