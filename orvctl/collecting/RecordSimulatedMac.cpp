#include "orvctl/collecting/RecordSimulatedMac.h"

#include "orvctl/collecting/OpenSimulatedMac.h"
#include "smc/FourCharCode.h"

#include <algorithm>

namespace orv {

namespace {

std::string typeInFile(const MachineFile& machine, const std::string& key)
{
    const auto row = std::ranges::find(*machine.smc, fourCharCode(key), &SMCRow::key);
    return row == machine.smc->end() ? "" : fourCharString(row->type);
}

} // namespace

std::optional<std::string> recordSimulatedMac(const std::string& path,
    const std::function<void(const std::string& text)>& write, const RecordingPlan& plan, std::string& fault)
{
    const auto mac = openSimulatedMac({path}, fault);
    if (!mac)
        return std::nullopt;
    const auto now = [&] { return Seconds(mac->runLoop.now).count(); };
    mac->simulation.bundle.keepWatchFileWritten();
    const auto typeOf = [&](const std::string& key) { return typeInFile(mac->recording.machine(), key); };
    Recorder recorder(mac->simulation.platform, {write, now, typeOf});
    recorder.begin(Seconds(plan.interval));
    mac->player.begin();
    mac->runLoop.runPending();
    const double end = plan.length.value_or(0);
    while (now() < end && !plan.shouldStop(now()))
        mac->player.playTo(std::min(end, now() + plan.interval), mac->runLoop);
    if (plan.length)
        recorder.end();
    return recorder.summary();
}

} // namespace orv
