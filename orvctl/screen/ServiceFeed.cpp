#include "orvctl/screen/ServiceFeed.h"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <utility>

namespace orv {

namespace {

void makePipe(FileDescriptor& reading, FileDescriptor& writing)
{
    std::array<int, 2> ends{-1, -1};
    if (pipe(ends.data()) != 0)
        return;
    for (const int end : ends) {
        fcntl(end, F_SETFD, FD_CLOEXEC);
        fcntl(end, F_SETFL, O_NONBLOCK);
    }
    reading = FileDescriptor(ends[0]);
    writing = FileDescriptor(ends[1]);
}

/// A thread of it, with all signals blocked, so that they go to the main one.
template <typename Run> std::thread startDeaf(Run run)
{
    sigset_t all, before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    std::thread thread(run);
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return thread;
}

} // namespace

ServiceFeed::ServiceFeed()
{
    makePipe(arriving, telling);
    makePipe(wanting, output);
    watcher = startDeaf([this] { watch(); });
}

ServiceFeed::~ServiceFeed()
{
    wanting.reset();
    watcher.join();
}

void ServiceFeed::watch()
{
    auto ended = watchService(*this, output.get());
    post([this, ended = std::move(ended)](Top&) { fault = ended; });
}

std::optional<Clock::time_point> ServiceFeed::due() const
{
    const auto next = shownAt + std::chrono::seconds(1);
    const Clock::time_point steady(std::chrono::ceil<Clock::duration>(steadyUntil.value_or(Seconds::zero())));
    return std::max(next, steady);
}

bool ServiceFeed::post(News news)
{
    const std::lock_guard lock(mutex);
    waiting.push_back(std::move(news));
    [[maybe_unused]] const auto written = write(telling.get(), "", 1);
    return true;
}

void ServiceFeed::take(Top& top)
{
    std::array<char, 64> bytes{};
    while (read(arriving.get(), bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size())) { }
    shownAt = Clock::now();
    std::vector<News> news;
    {
        const std::lock_guard lock(mutex);
        news.swap(waiting);
    }
    for (auto& each : news)
        each(top);
    steadyUntil = top.steadyUntil();
}

bool ServiceFeed::repliesArrived(const WatchedReplies& replies)
{
    return post([readings = topReadings(replies), timing = replies.timing, at = now()](
                    Top& top) mutable { top.arrived(std::move(readings), timing, at); });
}

bool ServiceFeed::nothingArrived(const Timing& timing)
{
    return post([timing, at = now()](Top& top) { top.aged(timing, at); });
}

bool ServiceFeed::serviceMissing(const std::string& why)
{
    return post([why](Top& top) { top.missing(why); });
}

} // namespace orv
