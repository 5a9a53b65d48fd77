#include "linux/bus/RefreshTimes.h"

#include <cstddef>
#include <utility>

namespace orv {

RefreshTimesKeeper::RefreshTimesKeeper(Clock givenClock)
    : clock(std::move(givenClock))
{
}

void RefreshTimesKeeper::refreshBegan(Refreshed what)
{
    const auto now = std::chrono::duration_cast<std::chrono::microseconds>(clock());
    beginnings.at(static_cast<std::size_t>(what)) = static_cast<std::uint64_t>(now.count());
}

// A delivery shows in replies from the next refresh of the readings on, and so does its time.
void RefreshTimesKeeper::refreshEnded(Refreshed what)
{
    const auto beginning = beginnings.at(static_cast<std::size_t>(what));
    switch (what) {
    case Refreshed::bluetoothReport:
        noted.lastBluetoothReport = beginning;
        return;
    case Refreshed::watchFile:
        noted.lastWatchFile = beginning;
        return;
    case Refreshed::readings:
        noted.lastRefresh = beginning;
        publish();
    }
}

void RefreshTimesKeeper::setAsleep(bool isAsleep)
{
    if (noted.isAsleep == isAsleep)
        return;
    noted.isAsleep = isAsleep;
    auto changed = *times.take();
    changed.isAsleep = isAsleep;
    times.replace(changed);
    onChange();
}

void RefreshTimesKeeper::publish()
{
    times.replace(noted);
    onChange();
}

} // namespace orv
