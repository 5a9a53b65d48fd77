#include "linux/loop/EventRunLoop.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>

using namespace orv;

TEST(EventRunLoop, RunsThingsDueTogetherInTheOrderOfScheduling)
{
    EventRunLoop loop;
    std::string log;
    std::unique_ptr<Timer> timer;
    timer = loop.scheduleRepeating(Seconds(0.02), [&] {
        log += "t";
        timer.reset();
    });
    loop.runAfter(Seconds(0.02), [&] { log += "a"; });
    loop.runAfter(Seconds(0.02), [&] { log += "b"; });
    loop.runAfter(Seconds(0.2), [&] { loop.exit(7); });
    EXPECT_EQ(loop.run(), 7);
    EXPECT_EQ(log, "tab");
}

TEST(EventRunLoop, RunsPostedWorkOfAnyThreadOnItsOwn)
{
    EventRunLoop loop;
    int count = 0; // not atomic: only the loop's thread may touch it
    std::atomic<int> background = 0;
    const auto main = std::this_thread::get_id();
    for (int work = 0; work < 8; ++work) {
        loop.postToBackground([&] {
            background += std::this_thread::get_id() != main;
            for (int round = 0; round < 100; ++round)
                loop.post([&] { ++count == 800 ? loop.exit(0) : void(); });
        });
    }
    EXPECT_EQ(loop.run(), 0);
    EXPECT_EQ(count, 800);
    EXPECT_EQ(background, 8);
}

TEST(EventRunLoop, StartsNothingInTheBackgroundBeforeItRuns)
{
    bool isStarted = false;
    {
        EventRunLoop loop; // waits for background work when it ends
        loop.postToBackground([&] { isStarted = true; });
    }
    EXPECT_FALSE(isStarted);
}

TEST(EventRunLoop, KeepsTheFirstExitStatus)
{
    EventRunLoop loop;
    loop.exit(1);
    loop.exit(0);
    EXPECT_EQ(loop.run(), 1);
}

TEST(EventRunLoop, EndsAfterTheWorkInTheBackground)
{
    std::atomic<bool> hasEnded = false;
    {
        EventRunLoop loop;
        loop.postToBackground([&] {
            loop.exit(0);
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
            hasEnded = true;
        });
        loop.run();
    }
    EXPECT_TRUE(hasEnded);
}
