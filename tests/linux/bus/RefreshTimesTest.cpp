#include "linux/bus/RefreshTimes.h"

#include <gtest/gtest.h>

using namespace orv;
using namespace std::chrono_literals;

namespace {

struct Keeper {
    Keeper()
    {
        keeper.onChange = [this] { ++changes; };
    }

    void refresh(Refreshed what, std::chrono::nanoseconds beginning, std::chrono::nanoseconds end)
    {
        now = beginning;
        keeper.refreshBegan(what);
        now = end;
        keeper.refreshEnded(what);
    }
    RefreshTimes times() const { return *keeper.times.take(); }

    std::chrono::nanoseconds now{};
    int changes = 0;
    RefreshTimesKeeper keeper{[this] { return now; }};
};

} // namespace

TEST(RefreshTimes, AreTheBeginningsOfWhatHasEnded)
{
    Keeper test;
    EXPECT_EQ(test.times(), RefreshTimes{});
    test.keeper.refreshBegan(Refreshed::readings);
    EXPECT_EQ(test.times(), RefreshTimes{});
    test.refresh(Refreshed::readings, 10'000'900ns, 20s);
    EXPECT_EQ(test.times(), (RefreshTimes{.lastRefresh = 10'000}));
    EXPECT_EQ(test.changes, 1);
}

TEST(RefreshTimes, OfADeliveryShowWhenARefreshHasTakenItOver)
{
    Keeper test;
    test.refresh(Refreshed::bluetoothReport, 1s, 3s);
    test.refresh(Refreshed::watchFile, 2s, 7s);
    EXPECT_EQ(test.times(), RefreshTimes{});
    EXPECT_EQ(test.changes, 0);
    test.refresh(Refreshed::readings, 10s, 11s);
    EXPECT_EQ(test.times(), (RefreshTimes{10'000'000, 1'000'000, 2'000'000}));
}

TEST(RefreshTimes, AsleepIsToldOfWhenItChanges)
{
    Keeper test;
    test.keeper.workspaceDidWakeUp();
    EXPECT_EQ(test.changes, 0);
    test.refresh(Refreshed::bluetoothReport, 1s, 3s);
    test.keeper.workspaceWillSleep();
    EXPECT_EQ(test.times(), (RefreshTimes{.isAsleep = true}));
    test.keeper.workspaceDidWakeUp();
    EXPECT_EQ(test.times(), RefreshTimes{});
    EXPECT_EQ(test.changes, 2);
}
