#include "platform/RefreshObserver.h"

#include "bluetooth/OrvBluetoothAppleWatch.h"
#include "bluetooth/OrvBluetoothSysProfile.h"
#include "tests/support/TestMac.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

using namespace orv;

namespace {

class Notes final : public RefreshObserver {
public:
    void refreshBegan(Refreshed what) override { text += "begins " + name(what) + "; "; }
    void refreshEnded(Refreshed what) override { text += "ends " + name(what) + "; "; }

    std::string take() { return std::exchange(text, {}); }

private:
    static std::string name(Refreshed what)
    {
        return what == Refreshed::readings ? "readings" : what == Refreshed::bluetoothReport ? "report" : "file";
    }

    std::string text;
};

std::string macWith(const std::string& watch)
{
    return R"({"sysctl": {"hw.model": "Mac14,2", "machdep.cpu.brand_string": "Apple M2"})" + watch + "}";
}

struct ObservedMac {
    explicit ObservedMac(const std::string& watch)
        : mac(macWith(watch))
    {
        mac.simulation.platform.refreshObserver = &notes;
    }

    Notes notes;
    TestMac mac;
};

} // namespace

TEST(RefreshObserver, IsToldOfAReportWhenItIsDelivered)
{
    ObservedMac observed("");
    const auto monitor = OrvBluetoothSysProfile::create(observed.mac.simulation.platform);
    EXPECT_EQ(observed.notes.take(), "begins report; ");
    observed.mac.runLoop.runPending();
    monitor->deviceIsConnected(); // one is under way
    EXPECT_EQ(observed.notes.take(), "");
    observed.mac.launcher.finish("{}");
    observed.mac.runLoop.runPending();
    EXPECT_EQ(observed.notes.take(), "ends report; ");
}

TEST(RefreshObserver, IsToldOfAWatchFileOnlyWhenItWasTaken)
{
    for (const auto& [watch, expected] : {
             std::pair(R"(, "watch": {"watch-1": {"batteryLevel": 80}})", "begins file; ends file; "),
             std::pair(R"(, "watch": "no object")", "begins file; "), std::pair("", "begins file; "), // no companion
         }) {
        ObservedMac observed(watch);
        const auto reader = OrvBluetoothAppleWatch::create(observed.mac.simulation.platform);
        observed.mac.runLoop.advance(Seconds(5));
        EXPECT_EQ(observed.notes.take(), expected) << watch;
        EXPECT_FALSE(reader->isUpdating);
    }
}
