#include "refresh/RefreshingSource.h"

#include "tests/support/TestMac.h"

#include <gtest/gtest.h>

#include <optional>
#include <utility>

using namespace orv;

namespace {

class CountedSource final : public RefreshingSource {
public:
    CountedSource(TestMac& mac, int& counted)
        : RefreshingSource(mac.simulation.platform, Refreshed::readings)
        , updates(counted)
    {
    }

    using RefreshingSource::finishUpdate;
    using RefreshingSource::start;

    bool finishesAtOnce = true;

private:
    void beginUpdate() override
    {
        ++updates;
        updateData(); // one is under way from its very beginning
        if (finishesAtOnce)
            finishUpdate();
    }

    int& updates;
};

struct Refreshing : testing::Test {
    TestMac mac{intelText("")};
    int updates = 0;
    std::optional<CountedSource> source{std::in_place, mac, updates};
};

} // namespace

TEST_F(Refreshing, BeginsWithTheStartAndGoesOnByTheTimer)
{
    mac.wake();
    mac.runLoop.advance(Seconds(60));
    EXPECT_EQ(updates, 0);
    source->start(Seconds(10));
    EXPECT_EQ(updates, 1);
    mac.runLoop.advance(Seconds(9.999));
    EXPECT_EQ(updates, 1);
    mac.runLoop.advance(Seconds(0.001));
    EXPECT_EQ(updates, 2);
    mac.runLoop.advance(Seconds(20));
    EXPECT_EQ(updates, 4);
}

TEST_F(Refreshing, IsStartedOnce)
{
    source->start(Seconds(10));
    source->start(Seconds(1));
    EXPECT_EQ(updates, 1);
    mac.runLoop.advance(Seconds(10));
    EXPECT_EQ(updates, 2);
}

TEST_F(Refreshing, PausesDuringSleepAndFollowsEachWake)
{
    source->start(Seconds(10));
    mac.sleep();
    EXPECT_TRUE(source->isComputerSleeping);
    source->updateData();
    mac.runLoop.advance(Seconds(60));
    EXPECT_EQ(updates, 1);
    mac.wake();
    EXPECT_FALSE(source->isComputerSleeping);
    EXPECT_EQ(updates, 2);
    mac.wake();
    EXPECT_EQ(updates, 3);
    mac.runLoop.advance(Seconds(10));
    EXPECT_EQ(updates, 4);
}

TEST_F(Refreshing, NeverBeginsWhileOneIsUnderWay)
{
    source->finishesAtOnce = false;
    source->start(Seconds(10));
    mac.runLoop.advance(Seconds(60));
    mac.sleep();
    mac.wake();
    source->updateData();
    EXPECT_TRUE(source->isUpdating);
    EXPECT_FALSE(source->isComputerSleeping);
    EXPECT_EQ(updates, 1);
    source->finishUpdate();
    EXPECT_FALSE(source->isUpdating);
    EXPECT_EQ(updates, 1); // what was absorbed is not made up for
    source->updateData();
    EXPECT_EQ(updates, 2);
}

TEST_F(Refreshing, EndsWithTheSource)
{
    source->start(Seconds(10));
    source.reset();
    mac.sleep();
    mac.wake();
    mac.runLoop.advance(Seconds(60));
    EXPECT_EQ(updates, 1);
}
