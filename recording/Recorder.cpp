#include "recording/Recorder.h"

#include "bluetooth/OrvBluetoothSysProfile.h"
#include "bluetooth/WatchFile.h"
#include "platform/BluetoothEvents.h"
#include "platform/Workspace.h"
#include "recording/NamelessReport.h"
#include "thermal/Collection.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace orv {

namespace {

constexpr double patienceForReport = 15; // seconds
const Value nothingPrinted = std::string();

} // namespace

/// Hears of sleep and wake before the recorder itself does.
class Recorder::Notes final : public SleepWakeObserver {
public:
    Notes(Recorder& owner, Workspace& observed)
        : recorder(owner)
        , workspace(observed)
    {
        workspace.registerSleepWakeObservers(*this);
    }
    ~Notes() override { workspace.removeSleepWakeObservers(*this); }

    void workspaceWillSleep() override { recorder.happened("sleep"); }
    void workspaceDidWakeUp() override { recorder.isWaking = true; } // told with what the refresh on wake finds

private:
    Recorder& recorder;
    Workspace& workspace;
};

Recorder::Recorder(const Platform& given, RecordingTarget givenTarget)
    : RefreshingSource(given, Refreshed::readings)
    , platform(given)
    , target(std::move(givenTarget))
    , services(given.hidEventSystem)
    , tap(given.runLoop, given.processLauncher, target.now,
          [this](double startedAt, const std::string& output) { reportArrived(startedAt, output); })
    , tappedPlatform{given.runLoop, given.workspace, given.bluetoothEvents, tap, given.bundle, given.hidEventSystem}
{
}

Recorder::~Recorder() = default;

void Recorder::begin(Seconds interval)
{
    notes = std::make_unique<Notes>(*this, platform.workspace);
    start(interval);
    platform.bluetoothEvents.observe([this] { happened("connect"); }, [this] { happened("pair"); });
    monitor = OrvBluetoothSysProfile::create(tappedPlatform);
    looks = WatchLooks::create(platform, [this] { lookAtWatchFile(); });
    platform.runLoop.runAfter(Seconds(patienceForReport), [this, isThere = std::weak_ptr(looks)] {
        if (isThere.expired())
            return;
        tap.giveUpBefore(target.now());
        writeHeld();
    });
}

void Recorder::end()
{
    if (!isComputerSleeping && target.now() > momentAt)
        takeMoment();
    tap.giveUpBefore(target.now() + 1);
    if (target.now() > (held.empty() ? lastAt : held.back().at))
        held.push_back({target.now(), stepLine(target.now(), {})});
    writeHeld();
}

std::string Recorder::summary() const
{
    const auto kept = std::ranges::count_if(first.smc, [](const auto& row) { return row.second.isKept; });
    const auto zeroed = static_cast<std::ptrdiff_t>(first.smc.size()) - kept;
    return std::to_string(kept) + " keys with their values, " + std::to_string(zeroed) + " zeroed, "
        + std::to_string(first.hid.size()) + " HID services, " + std::to_string(standIns.count())
        + " names and addresses replaced, " + std::to_string(steps) + " later moments";
}

void Recorder::beginUpdate()
{
    takeMoment();
    finishUpdate();
}

void Recorder::takeMoment()
{
    momentAt = target.now();
    tap.giveUpBefore(momentAt - patienceForReport);
    smc.keys.clear();
    Orv_SMCHelper::collectThermalReadings(profile, smc, services);
    readWhatCollectionsLeaveOut();
    RecordedMoment moment{recordedKeys(smc.getAllKeys(), smc), recordedServices(services.services), watchFile()};
    if (hasFirst) {
        auto members = changes(latest, moment);
        if (isWaking)
            members.push_back({"event", std::string("wake")});
        add(std::move(members));
    } else {
        first = {recordedKeys(smc.names, smc), moment.hid, moment.watch};
        nameFailingTypes();
    }
    hasFirst = true;
    isWaking = false;
    latest = std::move(moment);
}

void Recorder::lookAtWatchFile()
{
    auto found = watchFile();
    if (found == latest.watch)
        return;
    add({{"watch", found.value_or(Value())}});
    latest.watch = std::move(found);
}

void Recorder::nameFailingTypes()
{
    for (auto& [name, key] : first.smc) {
        if (key.type.empty() && target.typeOfFailingKey)
            key.type = target.typeOfFailingKey(name);
    }
}

// Each key once: at first every one that the SMC has, later those that collections can use.
void Recorder::readWhatCollectionsLeaveOut()
{
    smc.open();
    for (const auto& name : hasFirst ? smc.getAllKeys() : smc.names) {
        SMCVal val{.key = name};
        if (!smc.keys.contains(name))
            smc.read(val);
    }
    smc.close();
}

std::optional<Value> Recorder::watchFile()
{
    if (!companionApplication(platform.bundle))
        return std::nullopt;
    const auto file = readWatchFile(platform.bundle);
    if (file.outcome == WatchFileOutcome::noContainer || file.outcome == WatchFileOutcome::noFile)
        return std::nullopt;
    return namelessWatchFile(file.bytes, standIns);
}

void Recorder::happened(const char* event)
{
    add({{"event", std::string(event)}});
}

void Recorder::reportArrived(double startedAt, const std::string& output)
{
    auto nameless = output.empty() ? nothingPrinted : namelessReport(output, standIns);
    if (isBegun && nameless != report) {
        const auto at = std::max(startedAt, lastAt);
        const auto place = std::ranges::upper_bound(held, at, {}, &Line::at);
        held.insert(place, {at, stepLine(at, {{"bluetooth", output.empty() ? Value() : nameless}})});
    }
    report = std::move(nameless);
    if (!tap.isRunning())
        writeHeld();
}

void Recorder::add(std::vector<Member> members)
{
    if (members.empty())
        return;
    held.push_back({target.now(), stepLine(target.now(), std::move(members))});
    if (isBegun && !tap.isRunning())
        writeHeld();
}

void Recorder::writeHeld()
{
    if (!std::exchange(isBegun, true))
        target.write(firstObject(machineIdentity(), first, smc.conn != 0, report));
    for (const auto& [at, text] : std::exchange(held, {})) {
        target.write(text);
        lastAt = at;
        ++steps;
    }
}

} // namespace orv
