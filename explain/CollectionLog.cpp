#include "explain/CollectionLog.h"

namespace orv {

void CollectionLog::fanRead(std::int64_t index, const FanEntry& fan, std::optional<ReadSpeeds> readSpeeds)
{
    fans.push_back({index, fan, readSpeeds});
}

void CollectionLog::smcTableUsed(const SensorTable& table)
{
    smcTables.push_back(&table);
}

void CollectionLog::hidTableUsed(const SensorTable& table)
{
    hidTable = &table;
}

void CollectionLog::sensorDecided(const SensorDecision& decision)
{
    auto& sensor = sensors[std::string(decision.key)];
    sensor = {.outcome = decision.outcome,
        .val = std::nullopt,
        .fault = decision.fault,
        .degrees = decision.degrees,
        .from = std::string(decision.from),
        .title = std::string(decision.title),
        .holder = std::string(decision.holder),
        .kind = decision.kind,
        .number = decision.number};
    if (decision.val)
        sensor.val = *decision.val;
}

void CollectionLog::serviceRead(std::optional<std::string_view> code, std::optional<double> degrees)
{
    if (code)
        holders.insert_or_assign(std::string(*code), services.size());
    services.push_back({.code = code ? std::optional<std::string>(*code) : std::nullopt,
        .degrees = degrees,
        .replacedBy = std::nullopt});
}

void CollectionLog::serviceReplaced(std::string_view code)
{
    services[holders.find(code)->second].replacedBy = services.size();
}

void CollectionLog::serviceDecided(std::string_view code, ServiceOutcome outcome)
{
    services[holders.find(code)->second].outcome = outcome;
}

void CollectionLog::sensorReplaced(std::string_view code)
{
    if (const auto sensor = sensors.find(code); sensor != sensors.end())
        sensor->second.isReplaced = true;
}

} // namespace orv
