#include "linux/LoginWorkspace.h"

#include "linux/SpawnLauncher.h"
#include "linux/loop/EventRunLoop.h"

#include <gtest/gtest.h>

namespace orv {

namespace {

using namespace std::chrono_literals;

class LoginWorkspaceTest : public testing::Test, public SleepWakeObserver {
protected:
    LoginWorkspaceTest() { workspace.registerSleepWakeObservers(*this); }

    void workspaceDidWakeUp() override { told += "wake "; }
    void workspaceWillSleep() override { told += "sleep "; }

    EventRunLoop runLoop;
    SpawnLauncher launcher{{}};
    SystemBus systemBus{runLoop.event()};
    std::chrono::nanoseconds asleep = 5h; // since the computer was started
    LoginWorkspace workspace{runLoop, launcher, systemBus, [this] { return asleep; }};
    std::string told;
};

TEST_F(LoginWorkspaceTest, AnnouncedSleepIsOneSleepAndOneWake)
{
    workspace.prepareForSleep(true);
    workspace.checkClocks();
    asleep += 1h;
    workspace.prepareForSleep(false);
    workspace.checkClocks();
    EXPECT_EQ(told, "sleep wake ");
}

TEST_F(LoginWorkspaceTest, ClocksThatAreSeenBeforeTheAnnouncementCountTheSameWake)
{
    for (int night = 0; night < 2; ++night) {
        told.clear();
        workspace.prepareForSleep(true);
        asleep += 1h;
        workspace.checkClocks();
        workspace.prepareForSleep(false);
        workspace.checkClocks();
        EXPECT_EQ(told, "sleep wake ");
    }
}

TEST_F(LoginWorkspaceTest, WakeAfterACountedOneIsTold)
{
    asleep += 1h; // unannounced, and seen only after the next sleep was announced
    workspace.prepareForSleep(true);
    workspace.checkClocks();
    asleep += 1h;
    workspace.prepareForSleep(false);
    workspace.checkClocks();
    EXPECT_EQ(told, "sleep wake wake ");
}

TEST_F(LoginWorkspaceTest, SleepThatNobodyAnnouncedIsOneWake)
{
    workspace.checkClocks();
    asleep += 400ms; // what two clocks read one after the other may differ by
    workspace.checkClocks();
    EXPECT_EQ(told, "");
    asleep += 2s;
    workspace.checkClocks();
    workspace.checkClocks();
    EXPECT_EQ(told, "wake ");
    // Nor does it hide the next announced one, even if that one did not sleep in the end.
    workspace.prepareForSleep(true);
    workspace.prepareForSleep(false);
    EXPECT_EQ(told, "wake sleep wake ");
}

TEST_F(LoginWorkspaceTest, SleepWhoseAnnouncerVanishesEnds)
{
    workspace.announcerVanished();
    EXPECT_EQ(told, "");
    workspace.prepareForSleep(true);
    workspace.announcerVanished();
    workspace.announcerVanished();
    EXPECT_EQ(told, "sleep wake ");
}

/// Drops its background work as long as there are no threads.
class RunLoopWithoutThreads final : public RunLoop {
public:
    std::unique_ptr<Timer> scheduleRepeating(Seconds, std::function<void()>) override { return nullptr; }
    void runAfter(Seconds, std::function<void()>) override { }
    void post(std::function<void()>) override { }
    void postToBackground(std::function<void()> run) override
    {
        ++attempts;
        if (keepsWork)
            kept = std::move(run);
    }

    int attempts = 0;
    bool keepsWork = false;
    std::function<void()> kept;
};

TEST_F(LoginWorkspaceTest, ApplicationWhoseStartWasDroppedIsOpenedTheNextTime)
{
    RunLoopWithoutThreads loop;
    LoginWorkspace opening(loop, launcher, systemBus);
    opening.openApplication("/nonexistent");
    loop.keepsWork = true;
    opening.openApplication("/nonexistent");
    EXPECT_EQ(loop.attempts, 2);
    opening.openApplication("/nonexistent"); // still runs
    EXPECT_EQ(loop.attempts, 2);
    loop.kept = nullptr;
    opening.openApplication("/nonexistent");
    EXPECT_EQ(loop.attempts, 3);
}

} // namespace

} // namespace orv
