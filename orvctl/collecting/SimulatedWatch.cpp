#include "orvctl/collecting/SimulatedWatch.h"

#include "bluetooth/OrvBluetoothAppleWatch.h"
#include "bluetooth/OrvBluetoothSysProfile.h"
#include "orvctl/collecting/OpenSimulatedMac.h"
#include "orvctl/collecting/ReaderWait.h"
#include "platform/RefreshObserver.h"
#include "service/OrvSMCHelperServer.h"
#include "service/Replies.h"
#include "service/ValueSink.h"
#include "smc/SMC.h"
#include "thermal/OrvTemperatureFans.h"

#include <atomic>
#include <chrono>
#include <memory>
#include <optional>
#include <utility>

namespace orv {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::duration_cast;
using std::chrono::microseconds;

constexpr auto interval = duration_cast<Clock::duration>(OrvSMCHelperServer::reloadInterval);

std::atomic<SimulatedBundle*> watchedBundle = nullptr;

/// When the readings were measured, on the real clock.
class SimulatedTimes final : public RefreshObserver, public SleepWakeObserver {
public:
    void refreshBegan(Refreshed what) override
    {
        if (what == Refreshed::readings)
            beginning = Clock::now();
    }
    void refreshEnded(Refreshed what) override { isRefreshed = isRefreshed || what == Refreshed::readings; }
    void workspaceDidWakeUp() override { isAsleep = false; }
    void workspaceWillSleep() override { isAsleep = true; }

    Timing timing() const
    {
        return {
            std::chrono::ceil<microseconds>(Clock::now() - beginning), duration_cast<microseconds>(interval), isAsleep};
    }

    bool isRefreshed = false; // since that was last looked at

private:
    Clock::time_point beginning;
    bool isAsleep = false;
};

/// A Mac on a manual clock that follows the real one.
class SimulatedWatch {
public:
    explicit SimulatedWatch(RecordedMac& mac)
        : recorded(mac)
        , simulation(mac.simulation)
    {
        watchedBundle = &simulation.bundle;
        simulation.platform.refreshObserver = &times;
        simulation.workspace.registerSleepWakeObservers(times);
        server.emplace(simulation.platform,
            ReadingSources{[this]() -> SMC& { return smc; },
                [this]() -> const OrvTemperatureFans& { return made(profile); },
                [this]() -> OrvBluetoothSysProfile& { return *made(systemProfile, simulation.platform); },
                [this]() -> OrvBluetoothAppleWatch& { return *made(watch, simulation.platform); }});
        recorded.player.begin();
    }
    /// Ends the cycle of the watch's reader, which keeps the reader alive until then.
    ~SimulatedWatch()
    {
        watchedBundle = nullptr;
        server.reset();
        recorded.runLoop.advance(OrvSMCHelperServer::reloadInterval);
    }
    SimulatedWatch(const SimulatedWatch&) = delete;
    SimulatedWatch& operator=(const SimulatedWatch&) = delete;

    /// Lets as much time pass as has passed, and tells of it.
    bool step(Clock::duration time, ServiceWatcher& watcher)
    {
        recorded.player.playTo(recorded.player.position() + Seconds(time).count(), recorded.runLoop);
        if (!std::exchange(times.isRefreshed, false))
            return watcher.nothingArrived(times.timing());
        const auto thermal = reply([&](ReplySink& sink) { writeThermalReply(*server->smcData.take(), sink); });
        const auto bluetooth =
            reply([&](ReplySink& sink) { writeBluetoothReply(*server->btData.take(), sink, propertyListLimits); });
        return watcher.repliesArrived({thermal, bluetooth, times.timing()});
    }

private:
    template <typename WriteReply> static Dictionary reply(WriteReply writeReply)
    {
        ValueSink sink;
        writeReply(sink);
        const auto value = sink.take();
        return *value.as<Dictionary>();
    }

    static const OrvTemperatureFans& made(std::optional<OrvTemperatureFans>& profile)
    {
        return profile ? *profile : profile.emplace();
    }
    template <typename Source>
    static std::shared_ptr<Source>& made(std::shared_ptr<Source>& source, const Platform& platform)
    {
        if (!source)
            source = Source::create(platform);
        return source;
    }

    SimulatedTimes times;
    RecordedMac& recorded;
    SimulatedPlatform& simulation;
    SMC smc;
    std::optional<OrvTemperatureFans> profile;
    std::shared_ptr<OrvBluetoothSysProfile> systemProfile;
    std::shared_ptr<OrvBluetoothAppleWatch> watch;
    std::optional<OrvSMCHelperServer> server;
};

} // namespace

std::string watchSimulatedMac(const std::string& machinePath, ServiceWatcher& watcher, int output)
{
    std::string fault;
    const auto mac = openSimulatedMac({machinePath}, fault);
    if (!mac)
        return fault;
    SimulatedWatch watched(*mac);
    auto shown = Clock::now();
    for (bool isWanted = watched.step({}, watcher); isWanted && waitWhileRead(output, shown + interval);) {
        // What was missed, while this program was stopped, is made up for by one output.
        const auto time = (Clock::now() - shown) / interval * interval;
        shown += time;
        isWanted = watched.step(time, watcher);
    }
    return {};
}

void cleanAfterSimulatedMac()
{
    if (auto* bundle = watchedBundle.load())
        bundle->removeContainer();
}

} // namespace orv
