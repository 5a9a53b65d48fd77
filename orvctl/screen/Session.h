#pragma once

#include "orvctl/screen/Explainer.h"
#include "orvctl/screen/Feed.h"
#include "orvctl/screen/HeldComplaints.h"
#include "orvctl/screen/Screen.h"
#include "orvctl/screen/Signals.h"

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
    void wait();
    void takeKeys(short events);
    void obey(const Command& command);
    void takeSignals();
    void stop();
    int timeLeft() const;

    Top& top;
    Feed& feed;
    Explainer explainer;
    Signals signals;
    HeldComplaints complaints;
    Screen screen;
    bool isOver = false;
};

} // namespace orv
