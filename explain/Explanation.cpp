#include "explain/Explanation.h"

#include "explain/BluetoothExplanation.h"
#include "explain/SensorExplanation.h"
#include "explain/WatchExplanation.h"
#include "smc/SMCValueDecoding.h"

#include <algorithm>

namespace orv {

namespace {

using Orv_SMCHelper::CollectionWay;

std::string reasonFor(CollectionWay way, const Inspection& inspection)
{
    switch (way) {
    case CollectionWay::intel:
        return "its processor's name does not contain \"Apple\"";
    case CollectionWay::m1:
        return "its model is one of the five first ones with an M1";
    case CollectionWay::appleSilicon:
        break;
    }
    return "its processor's name contains \"Apple\", and " + inspection.profile.platform
        + " is none of the five first models with an M1";
}

std::optional<double> keyCount(const Inspection& inspection)
{
    const auto reads = inspection.reads.find("#KEY");
    if (reads == inspection.reads.end() || reads->second.front().status != KERN_SUCCESS)
        return std::nullopt;
    return decodeValue(reads->second.front().val);
}

MachineFacts factsOf(const Inspection& inspection)
{
    MachineFacts facts;
    facts.model = inspection.profile.platform;
    facts.processor = inspection.processorName;
    facts.way = Orv_SMCHelper::collectionWay(inspection.profile);
    facts.reason = reasonFor(facts.way, inspection);
    facts.efficiencyCores = inspection.profile.numberOfEfficiencyCores;
    facts.performanceCores = inspection.profile.numberOfPerformanceCores;
    facts.isSMCOpen = inspection.isSMCOpen;
    facts.smcKeys = keyCount(inspection);
    for (const auto& key : inspection.keys)
        ++(key.starts_with('T') ? facts.listedTemperatures : facts.listedFans);
    facts.isHIDAsked = inspection.log.hidTable != nullptr;
    facts.services = inspection.services.size();
    facts.isProfilerRun = inspection.report.has_value();
    return facts;
}

} // namespace

namespace {

std::vector<Obstacle> obstaclesOf(const MachineFacts& facts)
{
    std::vector<Obstacle> obstacles;
    if (!facts.isSMCOpen)
        obstacles.push_back(
            {"smc-closed", "The SMC cannot be opened, so none of its temperatures and fans are there.", ""});
    if (!facts.isProfilerRun)
        obstacles.push_back(
            {"no-profiler", "The system profiler cannot be started, so no Bluetooth device is there.", ""});
    return obstacles;
}

} // namespace

Explanation explain(const Inspection& inspection, Changes changes)
{
    Explanation explanation;
    explanation.machine = factsOf(inspection);
    explanation.sensors = explainSensors(inspection, changes);
    explanation.bluetooth = explainDevices(inspection, changes, explanation.machine.report);
    explanation.watch = explainWatch(inspection);
    explanation.machine.obstacles = obstaclesOf(explanation.machine);
    return explanation;
}

} // namespace orv
