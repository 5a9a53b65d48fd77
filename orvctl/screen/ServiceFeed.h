#pragma once

#include "base/FileDescriptor.h"
#include "orvctl/screen/Feed.h"
#include "service/Watching.h"

#include <functional>
#include <string>
#include <thread>

namespace orv {

/// The running service, watched by a thread of its own. It shows each refresh itself: to wake another thread for that
/// would cost as much again.
class ServiceFeed final : public Feed, private ServiceWatcher {
public:
    ServiceFeed();
    ~ServiceFeed() override { stop(); }
    ServiceFeed(const ServiceFeed&) = delete;
    ServiceFeed& operator=(const ServiceFeed&) = delete;

    void start(std::function<void(const News& news)> show) override;
    void stop() override;
    int descriptor() const override { return arriving.get(); }
    std::optional<Clock::time_point> due() const override;
    void take(Top& top) override;
    Seconds now() const override { return Clock::now().time_since_epoch(); }

private:
    bool repliesArrived(const WatchedReplies& replies) override;
    bool nothingArrived(const Timing& timing) override;
    bool serviceMissing(const std::string& why) override;
    void wakeReader();
    void watch();

    bool isLate = false; // a refresh, so that ages are told
    Clock::time_point toldAt = Clock::now(); // when they last were
    FileDescriptor arriving, telling; // a pipe that wakes the reader
    FileDescriptor wanting, output; // a pipe whose reading end closes when nobody watches any more
    std::function<void(const News& news)> show;
    std::thread watcher;
};

} // namespace orv
