#include "base/TimerQueue.h"

#include <gtest/gtest.h>

#include <string>

using namespace orv;
using namespace std::chrono_literals;

namespace {

struct Timers : testing::Test {
    TimerQueue queue;
    std::string log;

    auto note(const char* name)
    {
        return [this, name] { log += name; };
    }
};

} // namespace

TEST_F(Timers, RunThingsDueTogetherInTheOrderOfScheduling)
{
    queue.scheduleRepeating(0s, 40s, note("w"));
    queue.scheduleRepeating(0s, 5s, note("s"));
    queue.scheduleOnce(0s, 40s, note("o"));
    for (auto now = 5s; now <= 40s; now += 5s)
        queue.runDue(now);
    EXPECT_EQ(log, "ssssssswos"); // each firing schedules the next one, so the 5-second timer comes last
}

TEST_F(Timers, MakeUpForMissedFiringsWithOne)
{
    queue.scheduleRepeating(0s, 5s, note("s"));
    queue.runDue(17s);
    EXPECT_EQ(log, "s");
    EXPECT_EQ(queue.nextDeadline(), 20s);
    queue.runDue(20s);
    EXPECT_EQ(queue.nextDeadline(), 25s);
}

TEST_F(Timers, ShareAWakeUpWhenTheyAreNear)
{
    queue.scheduleOnce(0s, 5000ms, note("a"));
    queue.scheduleOnce(0s, 5050ms, note("b"));
    queue.scheduleOnce(0s, 5051ms, note("c"));
    EXPECT_EQ(queue.nextWakeUp(), 5050ms);
    queue.runDue(5050ms);
    EXPECT_EQ(log, "ab");
}

TEST_F(Timers, CountADelayFromTheDeadlineOfWhatRunsOnTime)
{
    queue.scheduleOnce(0s, 1s, [&] { queue.scheduleOnce(1020ms, 5s, note("on time")); });
    queue.runDue(1020ms);
    EXPECT_EQ(queue.nextDeadline(), 6s);
    queue.runDue(6s);
    queue.scheduleOnce(6s, 1s, [&] { queue.scheduleOnce(9s, 5s, note("late")); });
    queue.runDue(9s);
    EXPECT_EQ(queue.nextDeadline(), 14s);
    queue.runDue(14s);
    for (const auto late : {50ms, 51ms}) {
        queue.scheduleOnce(20s, 1s, [&, late] { queue.scheduleOnce(21s + late, 5s, note("")); });
        queue.runDue(21s + late);
        EXPECT_EQ(queue.nextDeadline(), late == TimerQueue::tolerance ? 26s : 26s + late);
        queue.runDue(30s);
    }
}

TEST_F(Timers, RunAPastThingAtOnce)
{
    queue.scheduleOnce(5s, -3s, note("p"));
    EXPECT_EQ(queue.nextDeadline(), 5s);
    queue.runDue(4s);
    EXPECT_EQ(log, "");
    queue.runDue(5s);
    EXPECT_EQ(log, "p");
}

TEST_F(Timers, CountADelayFromNowAfterSomethingSlow)
{
    auto now = 1s;
    queue.scheduleOnce(0s, 1s, [&] { now += 2s; });
    queue.scheduleOnce(0s, 1s, [&] { queue.scheduleOnce(now, 5s, note("companion")); });
    queue.runDue(now);
    EXPECT_EQ(queue.nextDeadline(), 8s);
}

TEST_F(Timers, MayEndThemselvesAndScheduleMore)
{
    TimerQueue::Identifier identifier = 0;
    identifier = queue.scheduleRepeating(0s, 1s, [&] {
        log += "x";
        queue.cancel(identifier);
        queue.scheduleOnce(1s, 0s, note("y"));
    });
    queue.runDue(1s);
    queue.runDue(9s);
    EXPECT_EQ(log, "xy");
    EXPECT_EQ(queue.nextWakeUp(), std::nullopt);
}

TEST(TimersDeathTest, StopAtAnIntervalThatIsNone)
{
    TimerQueue queue;
    EXPECT_DEATH((void)queue.scheduleRepeating(0s, 0s, [] { }), "a repeating timer needs a positive interval");
}
