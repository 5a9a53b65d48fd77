#include "base/MainThread.h"

#include "hardware/Hardware.h"
#include "refresh/RefreshingSource.h"
#include "tests/support/TestMac.h"

#include <gtest/gtest.h>

#include <functional>
#include <thread>
#include <utility>

using namespace orv;

namespace {

class EndlessSource final : public RefreshingSource {
public:
    explicit EndlessSource(const Platform& platform)
        : RefreshingSource(platform, Refreshed::readings)
    {
    }

    using RefreshingSource::finishUpdate;

private:
    void beginUpdate() override { }
};

} // namespace

TEST(MainThreadDeathTest, IsTheOnlyOneFromWhichTheseMayBeCalled)
{
#ifdef NDEBUG
    GTEST_SKIP() << "checked in builds with assertions";
#endif
    TestMac mac(intelText(""));
    EndlessSource source(mac.simulation.platform);
    auto& simulation = mac.simulation;
    const std::pair<const char*, std::function<void()>> calls[]{
        {"refresh", [&] { source.updateData(); }},
        {"end of a refresh", [&] { source.finishUpdate(); }},
        {"sleep of a source", [&] { source.workspaceWillSleep(); }},
        {"sleep", [&] { simulation.workspace.sleep(); }},
        {"register", [&] { simulation.workspace.registerSleepWakeObservers(source); }},
        {"remove", [&] { simulation.workspace.removeSleepWakeObservers(source); }},
        {"observe", [&] { simulation.bluetoothEvents.observe([] { }, [] { }); }},
        {"connect", [&] { simulation.bluetoothEvents.connectDevice(); }},
        {"hardware", [] { currentHardware(); }},
        {"HID", [&] { simulation.mac.forEachService(0, 0, [](HIDService&) { }); }},
        {"temperature", [&] { simulation.mac.setTemperature("TC0P", 40); }},
        {"fan", [&] { simulation.mac.setFanSpeed("F0Ac", 40); }},
        {"timer", [&] { (void)mac.runLoop.scheduleRepeating(Seconds(1), [] { }); }},
        {"delay", [&] { mac.runLoop.runAfter(Seconds(1), [] { }); }},
        {"time", [&] { mac.runLoop.runPending(); }},
    };
    for (const auto& [name, call] : calls) {
        call();
        EXPECT_DEATH(std::thread(call).join(), "isMainThread") << name;
    }
}
