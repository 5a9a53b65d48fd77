#include "service/OrvSMCHelperServer.h"

#include "bluetooth/OrvBluetoothAppleWatch.h"
#include "bluetooth/OrvBluetoothSysProfile.h"
#include "platform/RefreshObserver.h"
#include "service/Request.h"
#include "service/ValueSink.h"
#include "tests/support/TestMac.h"
#include "tests/support/ThermalReadings.h"
#include "thermal/OrvTemperatureFans.h"
#include "json/JSONWriter.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

using namespace orv;
using namespace std::string_view_literals;

namespace {

const char* watchedMac = R"({"sysctl": {"hw.model": "MacBookPro11,4", "machdep.cpu.brand_string": "Intel"},
    "smc": [{"key": "TC0P", "type": "sp78", "bytes": ["2800", "2900", "2a00", "2b00", "2c00"]}],
    "watch": {"watch-1": {"batteryLevel": 80}, "aa-bb": {"batteryLevel": 1}}})";
const char* report = R"({"SPBluetoothDataType": [{"device_connected": [{"A": {"device_address": "AA:BB",
    "device_batteryLevelLeft": "5%"}}]}]})";

/// A server with collaborators of its own.
struct TestServer {
    explicit TestServer(TestMac& mac)
        : server(mac.simulation.platform,
              {[&mac]() -> SMC& { return mac.smc; },
                  [this]() -> const OrvTemperatureFans& { return profile ? *profile : profile.emplace(); },
                  [this, &mac]() -> OrvBluetoothSysProfile& {
                      if (!systemProfile)
                          systemProfile = OrvBluetoothSysProfile::create(mac.simulation.platform);
                      return *systemProfile;
                  },
                  [this, &mac]() -> OrvBluetoothAppleWatch& {
                      if (!watch)
                          watch = OrvBluetoothAppleWatch::create(mac.simulation.platform);
                      return *watch;
                  }})
    {
    }

    double degrees() const { return degreesOf(*server.smcData.take(), "TC0P"); }

    std::optional<OrvTemperatureFans> profile;
    std::shared_ptr<OrvBluetoothSysProfile> systemProfile;
    std::shared_ptr<OrvBluetoothAppleWatch> watch;
    OrvSMCHelperServer server;
};

} // namespace

TEST(Server, RefreshesAtItsCreationAndEvery5Seconds)
{
    TestMac mac(watchedMac);
    const TestServer test(mac);
    EXPECT_EQ(test.degrees(), 40);
    mac.runLoop.advance(Seconds(4.999));
    EXPECT_EQ(test.degrees(), 40);
    mac.runLoop.advance(Seconds(0.001));
    EXPECT_EQ(test.degrees(), 41);
    mac.runLoop.advance(Seconds(10));
    EXPECT_EQ(test.degrees(), 43);
}

TEST(Server, PausesDuringSleepAndRefreshesOnEachWake)
{
    TestMac mac(watchedMac);
    const TestServer test(mac);
    mac.sleep();
    mac.runLoop.advance(Seconds(60));
    EXPECT_EQ(test.degrees(), 40);
    mac.wake();
    EXPECT_EQ(test.degrees(), 41);
    mac.wake();
    EXPECT_EQ(test.degrees(), 42);
}

TEST(Server, ShowsTheFirstWatchFileInItsRefreshAtFiveSeconds)
{
    TestMac mac(watchedMac);
    const TestServer test(mac);
    EXPECT_TRUE(test.server.btData.take()->empty());
    mac.runLoop.advance(Seconds(5));
    EXPECT_TRUE(test.server.btData.take()->contains("watch-1"));
}

TEST(Server, KeepsTheProfilersEntryWholeWhereTheWatchFileHasTheSameKey)
{
    TestMac mac(watchedMac);
    const TestServer test(mac);
    mac.runLoop.runPending();
    mac.launcher.finish(report);
    mac.runLoop.advance(Seconds(5));
    const auto levels = test.server.btData.take();
    EXPECT_EQ(levels->size(), 2u);
    EXPECT_EQ(levels->at("aa-bb").find("batteryLevel"), nullptr);
    EXPECT_NE(levels->at("aa-bb").find("batteryLevelLeft"), nullptr);
}

TEST(Server, IsAskedByTwoRequests)
{
    TestMac mac(watchedMac);
    const TestServer test(mac);
    mac.runLoop.advance(Seconds(5));
    const auto reply = [&](Request request) {
        ValueSink sink;
        writeReply(request, test.server, sink, propertyListLimits);
        return writeJSON(sink.take(), KeyOrder::sorted);
    };
    EXPECT_EQ(methodOf(Request::thermal), "getModelDatawithReply"sv);
    EXPECT_EQ(reply(Request::thermal),
        R"({"TC0P": {"title": "CPU Proximity", "type": "temperature", "unit": "celcius", "value": 41.0}})");
    EXPECT_EQ(methodOf(Request::bluetooth), "getBTDataWithReply"sv);
    EXPECT_EQ(reply(Request::bluetooth), R"({"aa-bb": {"batteryLevel": 1}, "watch-1": {"batteryLevel": 80}})");
}

TEST(Server, ReplacesOldReadingsByNothingWhenTheSMCGoesAway)
{
    TestMac mac(watchedMac);
    const TestServer test(mac);
    mac.hardware.isPresent = false;
    mac.runLoop.advance(Seconds(5));
    EXPECT_TRUE(test.server.smcData.take()->empty());
}

TEST(Server, TellsOfARefreshWhenItsReadingsCanBeTaken)
{
    struct Observer final : RefreshObserver {
        void refreshBegan(Refreshed) override { seen.push_back(degrees()); }
        void refreshEnded(Refreshed what) override
        {
            if (what == Refreshed::readings)
                seen.push_back(degrees());
        }
        std::function<double()> degrees = [] { return 0.0; };
        std::vector<double> seen;
    } observer;
    TestMac mac(watchedMac);
    mac.simulation.platform.refreshObserver = &observer;
    const TestServer test(mac);
    EXPECT_EQ(observer.seen.size(), 4u); // the other two began inside the first refresh
    observer.seen.clear();
    observer.degrees = [&] { return test.degrees(); };
    mac.runLoop.advance(Seconds(4.999));
    EXPECT_TRUE(observer.seen.empty());
    mac.runLoop.advance(Seconds(0.001));
    EXPECT_EQ(observer.seen, (std::vector<double>{40, 41}));
}

TEST(Published, IsTakenWholeWhileItIsReplaced)
{
    Published<std::vector<int>> published;
    std::atomic<bool> isMixed = false;
    std::atomic<bool> isOver = false;
    std::vector<std::thread> readers;
    for (int reader = 0; reader < 3; ++reader) {
        readers.emplace_back([&] {
            while (!isOver) {
                const auto taken = published.take();
                isMixed = isMixed || !std::ranges::all_of(*taken, [&](int number) { return number == taken->front(); });
            }
        });
    }
    for (int round = 0; round < 2000; ++round)
        published.replace(std::vector<int>(50, round));
    isOver = true;
    for (auto& reader : readers)
        reader.join();
    EXPECT_FALSE(isMixed);
    EXPECT_EQ(published.take()->front(), 1999);
}
