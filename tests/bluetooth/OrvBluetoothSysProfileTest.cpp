#include "bluetooth/OrvBluetoothSysProfile.h"

#include "tests/support/TestMac.h"

#include <gtest/gtest.h>

using namespace orv;

namespace {

std::string reportOf(const std::string& address)
{
    return R"({"SPBluetoothDataType": [{"device_connected": [{"A": {"device_address": ")" + address
        + R"(", "device_batteryLevel": "5%"}}]}]})";
}

struct BluetoothMonitor : testing::Test {
    TestMac mac{intelText("")};
    std::shared_ptr<OrvBluetoothSysProfile> monitor = OrvBluetoothSysProfile::create(mac.simulation.platform);

    BluetoothMonitor() { mac.runLoop.runPending(); }

    std::size_t launches() const { return mac.launcher.commands.size(); }

    void deliver(const std::string& report)
    {
        mac.launcher.finish(report);
        mac.runLoop.runPending();
    }

    /// Every event that asks for a refresh.
    void disturb()
    {
        mac.simulation.bluetoothEvents.connectDevice();
        mac.simulation.bluetoothEvents.changePairing();
        mac.runLoop.advance(Seconds(120));
    }
};

} // namespace

TEST_F(BluetoothMonitor, StartsOneProfilerAtItsCreationAndOneEvery120Seconds)
{
    EXPECT_EQ(mac.launcher.commands, (std::vector<std::string>{"/usr/sbin/system_profiler SPBluetoothDataType -json"}));
    deliver(reportOf("AA:BB"));
    EXPECT_TRUE(monitor->systemBlueToothDictionary.contains("aa-bb"));
    mac.runLoop.advance(Seconds(119.999));
    EXPECT_EQ(launches(), 1u);
    mac.runLoop.advance(Seconds(0.001));
    EXPECT_EQ(launches(), 2u);
}

TEST_F(BluetoothMonitor, AbsorbsEventsWhileARefreshIsUnderWay)
{
    disturb();
    EXPECT_EQ(launches(), 1u);
    deliver(reportOf("AA:BB"));
    mac.simulation.bluetoothEvents.connectDevice();
    mac.simulation.bluetoothEvents.connectDevice();
    mac.simulation.bluetoothEvents.changePairing();
    mac.runLoop.runPending();
    EXPECT_EQ(launches(), 2u);
    deliver("");
    EXPECT_TRUE(monitor->systemBlueToothDictionary.empty());
    mac.simulation.bluetoothEvents.changePairing();
    mac.runLoop.runPending();
    EXPECT_EQ(launches(), 3u);
}

TEST_F(BluetoothMonitor, StartsNothingWhileTheComputerSleeps)
{
    deliver(reportOf("AA:BB"));
    mac.sleep();
    disturb();
    EXPECT_EQ(launches(), 1u);
    mac.wake();
    mac.runLoop.runPending();
    EXPECT_EQ(launches(), 2u);
}

TEST_F(BluetoothMonitor, StoresADeliveryThatArrivesDuringSleep)
{
    mac.sleep();
    deliver(reportOf("AA:BB"));
    EXPECT_TRUE(monitor->systemBlueToothDictionary.contains("aa-bb"));
    EXPECT_FALSE(monitor->isUpdating);
    mac.wake();
    mac.wake(); // the second one finds a refresh under way
    mac.runLoop.runPending();
    EXPECT_EQ(launches(), 2u);
}

TEST_F(BluetoothMonitor, StopsForGoodWhenTheProfilerCannotBeStarted)
{
    deliver(reportOf("AA:BB"));
    mac.launcher.canStart = false;
    disturb();
    EXPECT_EQ(launches(), 2u);
    mac.launcher.canStart = true;
    disturb();
    mac.sleep();
    mac.wake();
    disturb();
    EXPECT_EQ(launches(), 2u);
    EXPECT_TRUE(monitor->systemBlueToothDictionary.contains("aa-bb"));
}

TEST_F(BluetoothMonitor, IsNotKeptAliveByADeliveryOrAnEvent)
{
    const std::weak_ptr<OrvBluetoothSysProfile> watched = monitor;
    monitor.reset();
    EXPECT_TRUE(watched.expired());
    deliver(reportOf("AA:BB"));
    disturb();
    mac.wake();
    EXPECT_EQ(launches(), 1u);
}
