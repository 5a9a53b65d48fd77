#pragma once

#include "base/FileDescriptor.h"
#include "base/ThreadSafety.h"
#include "orvctl/screen/Feed.h"
#include "service/Watching.h"

#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace orv {

/// The running service, watched by a thread of its own.
class ServiceFeed final : public Feed, private ServiceWatcher {
public:
    ServiceFeed();
    ~ServiceFeed() override;
    ServiceFeed(const ServiceFeed&) = delete;
    ServiceFeed& operator=(const ServiceFeed&) = delete;

    int descriptor() const override { return arriving.get(); }
    std::optional<Clock::time_point> due() const override;
    void take(Top& top) override;
    Seconds now() const override { return Clock::now().time_since_epoch(); }

private:
    using News = std::function<void(Top& top)>;

    bool repliesArrived(const WatchedReplies& replies) override;
    bool nothingArrived(const Timing& timing) override;
    bool serviceMissing(const std::string& why) override;
    bool post(News news);
    void watch();

    Clock::time_point shownAt = Clock::now(); // when ages were last told
    std::optional<Seconds> steadyUntil; // when they have to be again
    FileDescriptor arriving, telling; // a pipe that wakes the reader
    FileDescriptor wanting, output; // a pipe whose reading end closes when nobody watches any more
    std::mutex mutex;
    std::vector<News> waiting ORV_GUARDED_BY(mutex);
    std::thread watcher;
};

} // namespace orv
