#include "explain/SensorExplanation.h"

#include "explain/WhatIf.h"
#include "smc/Fans.h"
#include "thermal/Orv_SMCProfileKeys.h"

#include <array>
#include <set>
#include <utility>

namespace orv {

namespace {

constexpr std::array<std::pair<SensorOutcome, Verdict>, 6> outcomeVerdicts{{
    {SensorOutcome::shown, Verdict::shown},
    {SensorOutcome::leftOutOnChip, Verdict::leftOutOnChip},
    {SensorOutcome::beyondCoreCount, Verdict::beyondCoreCount},
    {SensorOutcome::exchangeFailed, Verdict::exchangeFailed},
    {SensorOutcome::belowThreshold, Verdict::belowThreshold},
    {SensorOutcome::titleTaken, Verdict::titleTaken},
}};

Verdict verdictOf(SMCValueFault fault)
{
    switch (fault) {
    case SMCValueFault::empty:
        return Verdict::empty;
    case SMCValueFault::wrongSize:
        return Verdict::wrongSize;
    case SMCValueFault::negative:
        return Verdict::negative;
    case SMCValueFault::noNumber:
    case SMCValueFault::none:
        break;
    }
    return Verdict::noNumber;
}

Verdict verdictOf(const CollectionLog::Sensor& sensor)
{
    if (sensor.isReplaced && sensor.outcome == SensorOutcome::shown)
        return Verdict::otherSource;
    for (const auto& [outcome, verdict] : outcomeVerdicts) {
        if (sensor.outcome == outcome)
            return verdict;
    }
    return verdictOf(sensor.fault);
}

Verdict verdictOf(const CollectionLog::Service& service)
{
    if (!service.code)
        return Verdict::noLocation;
    if (service.replacedBy)
        return Verdict::otherSource;
    switch (service.outcome) {
    case ServiceOutcome::shown:
        return Verdict::shown;
    case ServiceOutcome::notInCatalogue:
        return Verdict::notInCatalogue;
    case ServiceOutcome::belowThreshold:
        break;
    }
    return service.degrees ? Verdict::belowThreshold : Verdict::noEvent;
}

// A sensor that is titled by counting has no number while nobody counts it.
std::string titleOf(const SensorKeyPair& row, const SensorTable& table)
{
    const auto kind = Orv_SMCHelper::socKind(row.key);
    if (&table == &Orv_SMCProfileKeys::socSensorKeys && kind != SocKind::other)
        return std::string(Orv_SMCHelper::socKindTitle(kind));
    return std::string(row.name);
}

class Rows {
public:
    explicit Rows(const Inspection& inspected)
        : inspection(inspected)
        , log(inspected.log)
    {
    }

    std::vector<SensorRow> take()
    {
        addFanKeys();
        for (const auto& key : inspection.keys)
            rows.push_back(key.starts_with('T') ? temperatureRow(key) : fanRow(key));
        for (std::size_t place = 0; place < log.services.size(); ++place)
            rows.push_back(serviceRow(place));
        const std::set<std::string_view> listed(inspection.keys.begin(), inspection.keys.end());
        for (const auto* table : log.smcTables)
            addCatalogue(*table, [&listed](std::string_view key) { return listed.contains(key); });
        if (log.hidTable)
            addCatalogue(*log.hidTable, [this](std::string_view code) { return log.holders.contains(code); });
        return std::move(rows);
    }

private:
    void addFanKeys()
    {
        using namespace Orv_SMCHelper;
        for (const auto& fan : log.fans) {
            fans.emplace(fanKey(fan.index, actualSpeed), &fan);
            if (!fan.readSpeeds)
                continue;
            fanLimits.emplace(fanKey(fan.index, minimumSpeed), &fan);
            fanLimits.emplace(fanKey(fan.index, maximumSpeed), &fan);
        }
    }

    SensorRow smcRow(const std::string& key) const
    {
        SensorRow row{.key = key};
        const auto inCollection = inspection.reads.find(key);
        const auto later = inspection.laterReads.find(key);
        if (inCollection != inspection.reads.end())
            takeFirst(inCollection->second, row);
        else if (later != inspection.laterReads.end())
            takeFirst(later->second, row);
        return row;
    }

    static void takeFirst(const std::vector<SMCRead>& reads, SensorRow& row)
    {
        take(reads.front().val, reads.front().status == KERN_SUCCESS, row);
    }

    static void take(const SMCVal& val, bool hasBytes, SensorRow& row)
    {
        row.val = val;
        row.hasBytes = hasBytes;
        const auto number = hasBytes ? decodeValue(val) : std::nullopt;
        row.value = number ? Value(*number) : Value();
    }

    SensorRow temperatureRow(const std::string& key) const
    {
        auto row = smcRow(key);
        const auto found = log.sensors.find(key);
        if (found == log.sensors.end()) {
            row.verdict = Verdict::notInCatalogue;
            return row;
        }
        const auto& sensor = found->second;
        row.verdict = verdictOf(sensor);
        if (sensor.val)
            take(*sensor.val, sensor.outcome != SensorOutcome::exchangeFailed, row);
        row.from = sensor.from;
        if (!sensor.from.empty())
            row.reading = std::exchange(row.value, sensor.degrees);
        row.title = sensor.title.empty() ? catalogueTitle(key, sensor) : sensor.title;
        if (row.verdict == Verdict::titleTaken)
            row.rival = sensor.holder;
        if (row.verdict == Verdict::otherSource)
            row.rivalService = log.holders.find(key)->second;
        return row;
    }

    // Of a sensor that the collection gave no title.
    std::string catalogueTitle(const std::string& key, const CollectionLog::Sensor& sensor) const
    {
        for (const auto* table : log.smcTables) {
            if (const auto* entry = table->find(key)) {
                const auto title = titleOf(*entry, *table);
                const bool isCounted = sensor.kind != SocKind::other && sensor.number > 0;
                return isCounted ? title + ' ' + std::to_string(sensor.number) : title;
            }
        }
        return {};
    }

    SensorRow fanRow(const std::string& key) const
    {
        auto row = smcRow(key);
        if (const auto fan = fans.find(key); fan != fans.end()) {
            const auto& [index, entry, readSpeeds] = *fan->second;
            row.title = entry.title;
            if (!readSpeeds) {
                row.verdict = Verdict::exchangeFailed;
                return row;
            }
            row.fan = entry;
            row.readSpeeds = *readSpeeds;
            row.reading = std::exchange(row.value, entry.value);
        } else if (const auto limit = fanLimits.find(key); limit != fanLimits.end()) {
            row.verdict = Verdict::fanLimit;
            row.title = limit->second->entry.title;
        } else {
            using namespace Orv_SMCHelper;
            row.verdict = key == fanKey(maxFanCount, actualSpeed) ? Verdict::fanIndex : Verdict::noFan;
        }
        return row;
    }

    SensorRow serviceRow(std::size_t place) const
    {
        const auto& service = log.services[place];
        SensorRow row{.source = SensorSource::hid, .key = service.code.value_or(""), .service = place};
        row.verdict = verdictOf(service);
        if (const auto* entry = log.hidTable->find(row.key))
            row.title = entry->name;
        row.rivalService = service.replacedBy;
        if (service.degrees)
            row.value = *service.degrees;
        return row;
    }

    template <typename IsPresent> void addCatalogue(const SensorTable& table, IsPresent isPresent)
    {
        for (const auto& entry : table.rows) {
            if (isPresent(keyOf(entry)))
                continue;
            rows.push_back({.source = SensorSource::catalogue,
                .key = std::string(entry.key),
                .verdict = Verdict::notListed,
                .title = titleOf(entry, table),
                .table = &table});
        }
    }

    const Inspection& inspection;
    const CollectionLog& log;
    std::map<std::string, const CollectionLog::Fan*> fans;
    std::map<std::string, const CollectionLog::Fan*> fanLimits;
    std::vector<SensorRow> rows;
};

} // namespace

std::vector<SensorRow> explainSensors(const Inspection& inspection, Changes changes)
{
    auto rows = Rows(inspection).take();
    if (changes == Changes::leftOut)
        return rows;
    const WhatIf whatIf(inspection);
    for (auto& row : rows)
        row.change = changeFor(row, whatIf, inspection);
    return rows;
}

namespace {

bool isFanKey(const SensorRow& row)
{
    return row.source == SensorSource::smc && row.key.starts_with('F');
}

} // namespace

std::optional<Change> changeFor(const SensorRow& row, const WhatIf& whatIf, const Inspection& inspection)
{
    // No change in what they hold shows these: the catalogue and the fans' numbers would have to be others.
    if (row.verdict == Verdict::shown || row.verdict == Verdict::notInCatalogue || isFanKey(row))
        return std::nullopt;
    if (row.service)
        return whatIf.changeForService(*row.service);
    if (row.table && row.table == inspection.log.hidTable)
        return whatIf.changeForCode(row.key);
    return whatIf.changeForKey(row.key);
}

} // namespace orv
