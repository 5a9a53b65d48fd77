#include "orvctl/collecting/Replay.h"

#include "orvctl/collecting/OpenSimulatedMac.h"
#include "orvctl/collecting/RecordedServer.h"
#include "platform/RefreshObserver.h"
#include "recording/RecordingText.h"
#include "json/JSONWriter.h"

#include <algorithm>

namespace orv {

namespace {

/// Prints a line for each refresh of a recorded Mac's server.
class Player final : public RefreshObserver {
public:
    Player(
        const ReplayPlan& replayPlan, RecordedMac& recorded, const std::function<bool(const std::string& line)>& print)
        : plan(replayPlan)
        , mac(recorded)
        , printLine(print)
        , server(mac, *this)
    {
        show();
    }

    void play()
    {
        mac.player.begin();
        const double end = plan.to.value_or(mac.recording.length());
        while (!isRefused && mac.player.position() < end) {
            mac.player.playTo(std::min(end, mac.player.position() + interval), mac.runLoop);
            if (plan.progress)
                plan.progress(mac.player.position(), end);
        }
        // What has changed since the last refresh is seen by the next one.
        if (!plan.to && !isRefused && shownAt < end)
            mac.player.playTo(end + interval, mac.runLoop);
        isOver = true;
    }

    void refreshBegan(Refreshed) override { }
    void refreshEnded(Refreshed what) override
    {
        if (what == Refreshed::readings && hasBegun && !isOver)
            show();
    }

private:
    void show()
    {
        hasBegun = true; // the first refresh is part of the server's making
        shownAt = Seconds(mac.runLoop.now).count();
        if (isRefused || shownAt < plan.from)
            return;
        std::string line = R"({"schema": "orv.replay/1", "at": )" + json(momentOf(shownAt));
        if (plan.showsThermal)
            line += ", \"thermal\": " + json(server.thermalReply());
        if (plan.showsBluetooth)
            line += ", \"bluetooth\": " + json(server.bluetoothReply());
        isRefused = !printLine(line + "}\n");
    }

    static std::string json(const Value& value) { return writeJSON(value, KeyOrder::sorted); }

    static constexpr double interval = OrvSMCHelperServer::reloadInterval.count();

    const ReplayPlan& plan;
    RecordedMac& mac;
    const std::function<bool(const std::string& line)>& printLine;
    double shownAt = 0;
    bool hasBegun = false;
    bool isOver = false;
    bool isRefused = false; // by whoever reads the lines
    RecordedServer server; // last: it tells this object
};

} // namespace

bool replay(const ReplayPlan& plan, const std::function<bool(const std::string& line)>& print, std::string& fault)
{
    const auto mac = openSimulatedMac({plan.path}, fault);
    if (mac && plan.from > mac->recording.length())
        fault = beyondTheEnd(plan.path, mac->recording.length());
    if (!mac || !fault.empty())
        return false;
    Player(plan, *mac, print).play();
    return true;
}

} // namespace orv
