#include "orvctl/collecting/Replay.h"

#include "bluetooth/OrvBluetoothAppleWatch.h"
#include "bluetooth/OrvBluetoothSysProfile.h"
#include "orvctl/collecting/OpenSimulatedMac.h"
#include "platform/RefreshObserver.h"
#include "service/OrvSMCHelperServer.h"
#include "service/Replies.h"
#include "service/ValueSink.h"
#include "smc/SMC.h"
#include "thermal/OrvTemperatureFans.h"
#include "json/JSONWriter.h"

#include <algorithm>
#include <memory>

namespace orv {

namespace {

/// The server of a recorded Mac, which prints a line for each of its refreshes.
class ReplayedServer final : public RefreshObserver {
public:
    ReplayedServer(
        const ReplayPlan& replayPlan, RecordedMac& recorded, const std::function<bool(const std::string& line)>& print)
        : plan(replayPlan)
        , mac(recorded)
        , printLine(print)
    {
        mac.simulation.platform.refreshObserver = this;
        server.emplace(mac.simulation.platform,
            ReadingSources{[this]() -> SMC& { return smc; }, [this]() -> const OrvTemperatureFans& { return profile; },
                [this]() -> OrvBluetoothSysProfile& { return *created(monitor); },
                [this]() -> OrvBluetoothAppleWatch& { return *created(watch); }});
        show();
    }
    /// Ends the cycles under way, which keep their objects alive and tell this one.
    ~ReplayedServer() override
    {
        isRefused = true;
        mac.runLoop.advance(Seconds(5));
    }
    ReplayedServer(const ReplayedServer&) = delete;
    ReplayedServer& operator=(const ReplayedServer&) = delete;

    void play()
    {
        mac.player.begin();
        const double end = plan.to.value_or(mac.recording.length());
        while (!isRefused && mac.player.position() < end)
            mac.player.playTo(std::min(end, mac.player.position() + Seconds(interval).count()), mac.runLoop);
        // What has changed since the last refresh is seen by the next one.
        if (!plan.to && !isRefused && shownAt < end)
            mac.player.playTo(end + Seconds(interval).count(), mac.runLoop);
    }

    void refreshBegan(Refreshed) override { }
    void refreshEnded(Refreshed what) override
    {
        if (what == Refreshed::readings && server)
            show();
    }

private:
    template <typename Source> Source* created(std::shared_ptr<Source>& source)
    {
        if (!source)
            source = Source::create(mac.simulation.platform);
        return source.get();
    }

    void show()
    {
        shownAt = Seconds(mac.runLoop.now).count();
        if (isRefused || shownAt < plan.from)
            return;
        std::string line = R"({"schema": "orv.replay/1", "at": )";
        const auto whole = static_cast<std::int64_t>(shownAt);
        const bool isWhole = static_cast<double>(whole) == shownAt;
        line += writeJSON(isWhole ? Value(whole) : Value(shownAt), KeyOrder::asListed);
        if (plan.showsThermal)
            line +=
                ", \"thermal\": " + reply([&](ReplySink& sink) { writeThermalReply(*server->smcData.take(), sink); });
        if (plan.showsBluetooth)
            line += ", \"bluetooth\": " + reply([&](ReplySink& sink) {
                writeBluetoothReply(*server->btData.take(), sink, propertyListLimits);
            });
        isRefused = !printLine(line + "}\n");
    }

    template <typename WriteReply> static std::string reply(WriteReply writeReply)
    {
        ValueSink sink;
        writeReply(sink);
        return writeJSON(sink.take(), KeyOrder::sorted);
    }

    static constexpr Seconds interval = OrvSMCHelperServer::reloadInterval;

    const ReplayPlan& plan;
    RecordedMac& mac;
    const std::function<bool(const std::string& line)>& printLine;
    SMC smc;
    const OrvTemperatureFans profile;
    std::shared_ptr<OrvBluetoothSysProfile> monitor;
    std::shared_ptr<OrvBluetoothAppleWatch> watch;
    std::optional<OrvSMCHelperServer> server;
    double shownAt = 0;
    bool isRefused = false; // by whoever reads the lines
};

} // namespace

bool replay(const ReplayPlan& plan, const std::function<bool(const std::string& line)>& print, std::string& fault)
{
    const auto mac = openSimulatedMac({plan.path}, fault);
    if (mac && plan.from > mac->recording.length())
        fault = beyondTheEnd(plan.path, mac->recording.length());
    if (!mac || !fault.empty())
        return false;
    ReplayedServer(plan, *mac, print).play();
    return true;
}

} // namespace orv
