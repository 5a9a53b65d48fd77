#include "linux/bus/SystemBus.h"

#include "linux/LoginWorkspace.h"
#include "linux/SpawnLauncher.h"
#include "linux/loop/EventRunLoop.h"
#include "tests/support/FakeSystemBus.h"

#include <gtest/gtest.h>

namespace orv {

namespace {

class SystemBusTest : public testing::Test, public SleepWakeObserver {
protected:
    SystemBusTest()
    {
        workspace.registerSleepWakeObservers(*this);
        systemBus.watch([](sd_bus*) {}, [this] { ++changes; });
        settle();
        answer(everything);
    }

    void workspaceDidWakeUp() override { told += "wake "; }
    void workspaceWillSleep() override { told += "sleep "; }

    void settle()
    {
        while (sd_event_run(runLoop.event(), 0) > 0 || fakeBus.process())
            continue;
    }

    void disconnect()
    {
        fakeBus.disconnect();
        settle();
    }

    void reconnect()
    {
        systemBus.reconnect();
        settle();
    }

    void answer(int most)
    {
        for (; most > 0 && !fakeBus.calls.empty(); --most) {
            fakeBus.answer();
            settle();
        }
    }

    void announceSleep(const char* destination = nullptr)
    {
        constexpr const char* login = "org.freedesktop.login1";
        const auto signal =
            fakeBus.newSignal(login, "/org/freedesktop/login1", "org.freedesktop.login1.Manager", "PrepareForSleep");
        sd_bus_message_append(signal.get(), "b", 1);
        if (destination)
            sd_bus_message_set_destination(signal.get(), destination);
        fakeBus.send(signal);
        settle();
    }

    static constexpr int everything = 100;
    FakeSystemBus fakeBus;
    EventRunLoop runLoop;
    SpawnLauncher launcher{{}};
    SystemBus systemBus{runLoop.event()};
    LoginWorkspace workspace{runLoop, launcher, systemBus, [] { return std::chrono::nanoseconds(); }};
    std::string told;
    int changes = 0;
};

TEST_F(SystemBusTest, SleepEndsWithTheBusOnWhichItWasAnnounced)
{
    announceSleep();
    disconnect();
    EXPECT_EQ(told, "sleep wake ");
    // However little of what a later one was asked it has answered by then.
    int announced = 0;
    for (int answers = 2; answers < 10; ++answers) {
        told.clear();
        reconnect();
        answer(answers);
        announceSleep();
        disconnect();
        EXPECT_TRUE(told.empty() || told == "sleep wake ") << told << "after " << answers << " answers";
        announced += !told.empty();
    }
    EXPECT_GT(announced, 0);
}

TEST_F(SystemBusTest, SignalThatNoMatchOfTheBusLetThroughIsNotHeard)
{
    announceSleep(":1.1");
    EXPECT_EQ(told, "");
    announceSleep();
    EXPECT_EQ(told, "sleep ");
}

TEST_F(SystemBusTest, BusThatOnlyDropsConnectionsIsNoChange)
{
    disconnect();
    EXPECT_EQ(changes, 1);
    for (int attempt = 0; attempt < 3; ++attempt) {
        reconnect();
        EXPECT_TRUE(fakeBus.isConnected());
        disconnect();
    }
    fakeBus.refuse();
    reconnect();
    EXPECT_EQ(changes, 1);
    fakeBus.listen();
    reconnect();
    answer(everything);
    EXPECT_EQ(changes, 2);
}

} // namespace

} // namespace orv
