#include "orvctl/screen/ServiceFeed.h"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

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
}

void ServiceFeed::start(std::function<void(const News& news)> shower)
{
    show = std::move(shower);
    watcher = startDeaf([this] { watch(); });
}

void ServiceFeed::stop()
{
    wanting.reset();
    if (watcher.joinable())
        watcher.join();
}

void ServiceFeed::watch()
{
    const auto ended = watchService(*this, output.get());
    show([&](Top&) { fault = ended; });
    wakeReader();
}

std::optional<Clock::time_point> ServiceFeed::due() const
{
    return isLate ? std::optional(toldAt + std::chrono::seconds(1)) : std::nullopt;
}

void ServiceFeed::wakeReader()
{
    [[maybe_unused]] const auto written = write(telling.get(), "", 1);
}

void ServiceFeed::take(Top&)
{
    std::array<char, 64> bytes{};
    while (read(arriving.get(), bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size())) { }
    toldAt = Clock::now();
}

bool ServiceFeed::repliesArrived(const WatchedReplies& replies)
{
    auto readings = topReadings(replies);
    show([&](Top& top) {
        isLate = false;
        top.arrived(std::move(readings), replies.timing, now());
    });
    return true;
}

bool ServiceFeed::nothingArrived(const Timing& timing)
{
    show([&](Top& top) {
        isLate = true;
        top.aged(timing, now());
    });
    wakeReader();
    return true;
}

bool ServiceFeed::serviceMissing(const std::string& why)
{
    show([&](Top& top) {
        isLate = true;
        top.missing(why);
    });
    wakeReader();
    return true;
}

} // namespace orv
