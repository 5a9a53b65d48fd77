#include "orvctl/collecting/Playback.h"

#include "orvctl/collecting/OpenSimulatedMac.h"
#include "orvctl/collecting/RecordedServer.h"
#include "platform/RefreshObserver.h"
#include "platform/SleepWakeObservers.h"
#include "thermal/ZpSystemInfo.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cmath>
#include <cstring>
#include <utility>

namespace orv {

namespace {

constexpr double historyTime = 600;
constexpr double interval = OrvSMCHelperServer::reloadInterval.count();

/// So far before a moment that what is heard on the way to it fills a history.
double beginningFor(double moment)
{
    return std::floor(std::max(moment - historyTime, 0.0) / interval) * interval;
}

} // namespace

/// One run of a Mac, from some moment on.
class Playback::Played final : public RefreshObserver, public SleepWakeObserver {
public:
    Played(std::unique_ptr<RecordedMac> opened, double from, const Heard& told)
        : mac(std::move(opened))
        , heard(told)
    {
        mac->player.skipTo(from);
        mac->runLoop.advance(Seconds(from)); // while nothing is due
        mac->simulation.workspace.registerSleepWakeObservers(*this);
        server.emplace(*mac, *this);
        mac->player.begin();
        tell();
    }
    ~Played() override
    {
        server.reset();
        mac->simulation.workspace.removeSleepWakeObservers(*this);
    }
    Played(const Played&) = delete;
    Played& operator=(const Played&) = delete;

    void playTo(double moment)
    {
        isPlaying = true;
        mac->player.playTo(moment, mac->runLoop);
        isPlaying = false;
    }

    void refreshBegan(Refreshed what) override
    {
        if (what == Refreshed::readings)
            measuredAt = now();
    }
    void refreshEnded(Refreshed what) override
    {
        if (what == Refreshed::readings && isPlaying)
            tell();
    }
    void workspaceDidWakeUp() override { isAsleep = false; }
    void workspaceWillSleep() override
    {
        isAsleep = true;
        if (isPlaying)
            tell();
    }

    double now() const { return Seconds(mac->runLoop.now).count(); }

    const std::unique_ptr<RecordedMac> mac;

private:
    void tell()
    {
        using namespace std::chrono;
        const Timing timing{ceil<microseconds>(Seconds(now() - measuredAt)),
            duration_cast<microseconds>(OrvSMCHelperServer::reloadInterval), isAsleep};
        const auto thermal = server->thermalReply();
        const auto bluetooth = server->bluetoothReply();
        heard({*thermal.as<Dictionary>(), *bluetooth.as<Dictionary>(), timing}, now());
    }

    const Heard& heard;
    std::optional<RecordedServer> server;
    double measuredAt = 0;
    bool isAsleep = false;
    bool isPlaying = false;
};

Playback::Playback(std::string recordedPath, Heard told)
    : path(std::move(recordedPath))
    , heard(std::move(told))
{
}

Playback::~Playback() = default;

std::unique_ptr<Playback> Playback::open(const SimulatedMoment& moment, Heard heard, std::string& fault)
{
    auto mac = openSimulatedMac({moment.path, beginningFor(moment.at)}, fault);
    if (mac && moment.at > mac->recording.length())
        fault = beyondTheEnd(*moment.path, mac->recording.length());
    if (!mac || !fault.empty())
        return nullptr;
    std::unique_ptr<Playback> playback(new Playback(*moment.path, std::move(heard)));
    playback->play(std::move(mac), moment.at);
    return playback;
}

void Playback::play(std::unique_ptr<RecordedMac> mac, double moment)
{
    played = std::make_unique<Played>(std::move(mac), beginningFor(moment), heard);
    playTo(moment);
}

bool Playback::seek(double moment, std::string& fault)
{
    auto& recording = played->mac->recording;
    if (!recording.rewind()) {
        fault = path + ": " + std::strerror(errno);
        return false;
    }
    auto rewound = std::move(recording);
    played.reset(); // before the next, of which there is one at a time
    play(std::make_unique<RecordedMac>(std::move(rewound)), moment);
    return true;
}

void Playback::playTo(double moment)
{
    if (moment > position())
        played->playTo(moment);
}

double Playback::position() const
{
    return played->now();
}

double Playback::length() const
{
    return played->mac->recording.length();
}

std::string Playback::machine() const
{
    const auto& description = played->mac->recording.machine().description;
    return description.empty() ? ZpSystemInfo::modelIdentifier() : description;
}

} // namespace orv
