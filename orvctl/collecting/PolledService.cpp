#include "orvctl/collecting/ReaderWait.h"
#include "service/Client.h"
#include "service/OrvSMCHelperServer.h"
#include "service/Watching.h"

#include <chrono>

namespace orv {

namespace {

using Clock = std::chrono::steady_clock;

constexpr auto interval = std::chrono::duration_cast<Clock::duration>(OrvSMCHelperServer::reloadInterval);

bool look(ServiceWatcher& watcher)
{
    const auto thermal = askService(Request::thermal);
    if (!thermal.reply)
        return watcher.serviceMissing(thermal.error);
    const auto bluetooth = askService(Request::bluetooth);
    if (!bluetooth.reply)
        return watcher.serviceMissing(bluetooth.error);
    const auto* readings = thermal.reply->as<Dictionary>();
    const auto* levels = bluetooth.reply->as<Dictionary>();
    return watcher.repliesArrived({readings ? *readings : Dictionary(), levels ? *levels : Dictionary(), std::nullopt});
}

} // namespace

// Where the service tells nobody of a refresh it is asked as often as there is one. Its replies have no time.
std::string watchService(ServiceWatcher& watcher, int output)
{
    auto next = Clock::now() + interval;
    while (look(watcher) && waitWhileRead(output, next))
        next = Clock::now() + interval;
    return {};
}

} // namespace orv
