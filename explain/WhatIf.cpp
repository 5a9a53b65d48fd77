#include "explain/WhatIf.h"

#include "readings/Text.h"
#include "smc/FourCharCode.h"
#include "smc/SMCValueEncoding.h"
#include "thermal/Collection.h"
#include "thermal/Threshold.h"
#include "thermal/ZpM1IOHIDSensors.h"

#include <algorithm>
#include <utility>

namespace orv {

namespace {

constexpr int mostSteps = 64; // beyond what can stand in the way of one key

/// Answers from a machine that is thought of.
class ImaginedSMC final : public SMC {
public:
    explicit ImaginedSMC(const ThermalMachine& imagined)
        : machine(imagined)
    {
        keysList = imagined.keys;
    }

    void open() override { }
    kern_return_t close() override { return KERN_SUCCESS; }
    kern_return_t read(SMCVal& val) override
    {
        const auto found = machine.reads.find(val.key);
        if (found == machine.reads.end())
            return KERN_SUCCESS; // as the SMC answers about a key that it does not know
        auto& next = readCounts[val.key];
        const auto& read = found->second[std::min(next++, found->second.size() - 1)];
        auto key = std::move(val.key);
        val = read.val;
        val.key = std::move(key);
        return read.status;
    }

private:
    const ThermalMachine& machine;
    std::map<std::string, std::size_t> readCounts;
};

class ImaginedHIDEventSystem final : public HIDEventSystem {
public:
    explicit ImaginedHIDEventSystem(const std::vector<HIDRead>& imagined)
        : services(imagined)
    {
    }

    bool forEachService(std::int32_t, std::int32_t, const std::function<void(HIDService&)>& visit) override
    {
        for (const auto& read : services) {
            Service service(read);
            visit(service);
        }
        return true;
    }

private:
    class Service final : public HIDService {
    public:
        explicit Service(const HIDRead& imagined)
            : read(imagined)
        {
        }
        Value locationID() override { return read.locationID; }
        std::optional<double> eventValue(std::int32_t, std::int32_t) override { return read.degrees; }

    private:
        const HIDRead& read;
    };

    const std::vector<HIDRead>& services;
};

CollectionLog collect(const ThermalMachine& machine)
{
    ImaginedSMC smc(machine);
    ImaginedHIDEventSystem services(machine.services);
    CollectionLog log;
    Orv_SMCHelper::collectThermalReadings(
        {machine.profile, [&machine] { return machine.processorName; }, &log}, smc, services);
    return log;
}

void setBytes(SMCVal& val, std::string_view bytes)
{
    val.bytes = {};
    const auto count = std::min({bytes.size(), val.bytes.size(), std::size_t{val.dataSize}});
    std::copy_n(bytes.begin(), count, val.bytes.begin());
}

/// Makes the value count, in its own type and size. False when these hold nothing that does.
bool raise(SMCVal& val)
{
    const auto* format = smcValueFormat(val.dataType);
    if (!format)
        return false;
    // A short integer lacks its lower bytes: there only a large one counts.
    for (const double degrees : {smcThreshold + 0.5, 300.0, 1e6, 1e9}) {
        const auto bytes = encodeValue(*format, degrees);
        if (!bytes)
            return false;
        setBytes(val, *bytes);
        const auto number = decodeValue(val);
        if (number && countsAbove(smcThreshold, *number))
            return true;
    }
    return false;
}

/// One key on the way to being shown: the machine so far, and what was changed.
class KeyWay {
public:
    KeyWay(ThermalMachine start, std::string wanted)
        : machine(std::move(start))
        , key(std::move(wanted))
    {
    }

    Change change;

    enum class Step { taken, arrived, impossible };
    Step next()
    {
        const auto log = collect(machine);
        const auto found = log.sensors.find(key);
        if (found == log.sensors.end())
            return list();
        const auto& sensor = found->second;
        if (sensor.outcome == SensorOutcome::shown && !sensor.isReplaced)
            return Step::arrived;
        remove(sensor);
        return Step::taken;
    }

private:
    Step list()
    {
        if (std::ranges::find(machine.keys, key) != machine.keys.end() || characterCount(key) != 4)
            return Step::impossible; // it is listed, and no table names it; or nobody can list it
        machine.keys.push_back(key);
        machine.reads[key] = std::vector<SMCRead>(1);
        change.push_back({.kind = ChangeKind::listed});
        become("sp78");
        raiseOrBecome();
        return Step::taken;
    }

    void remove(const CollectionLog::Sensor& sensor)
    {
        switch (sensor.outcome) {
        case SensorOutcome::shown:
            machine.services.clear();
            change.push_back({.kind = ChangeKind::codeGone, .name = key});
            break;
        case SensorOutcome::leftOutOnChip:
            changeChip();
            break;
        case SensorOutcome::beyondCoreCount:
            addCores(sensor);
            break;
        case SensorOutcome::exchangeFailed:
            machine.reads[key] = std::vector<SMCRead>(1);
            change.push_back({.kind = ChangeKind::readable});
            become("sp78");
            raiseOrBecome();
            break;
        case SensorOutcome::noNumber:
            mend(sensor.fault);
            break;
        case SensorOutcome::belowThreshold:
            raiseOrBecome();
            break;
        case SensorOutcome::titleTaken:
            std::erase(machine.keys, sensor.holder);
            change.push_back({.kind = ChangeKind::keyGone, .name = sensor.holder});
            break;
        }
    }

    void changeChip()
    {
        const std::string chip(Orv_SMCHelper::chipWithoutFirstCores);
        for (auto place = machine.processorName.find(chip); place != std::string::npos;
            place = machine.processorName.find(chip))
            machine.processorName.replace(place, chip.size(), "?");
        change.push_back({.kind = ChangeKind::otherChip, .name = chip});
    }

    void addCores(const CollectionLog::Sensor& sensor)
    {
        const bool isEfficiency = sensor.kind == SocKind::efficiencyCore;
        auto& profile = machine.profile;
        (isEfficiency ? profile.numberOfEfficiencyCores : profile.numberOfPerformanceCores) = sensor.number;
        change.push_back({.kind = isEfficiency ? ChangeKind::efficiencyCores : ChangeKind::performanceCores,
            .number = sensor.number});
    }

    void mend(SMCValueFault fault)
    {
        auto& val = value();
        const auto* format = smcValueFormat(val.dataType);
        if (fault == SMCValueFault::negative) {
            raiseOrBecome();
        } else if (fault == SMCValueFault::noNumber || !format || format->form == SMCNumberForm::none) {
            change.push_back({.kind = ChangeKind::ofType, .name = "sp78"});
            resize(2);
            become("sp78");
            raiseOrBecome();
        } else {
            resize(static_cast<std::uint32_t>(encodeValue(*format, 0)->size()));
        }
    }

    void resize(std::uint32_t size)
    {
        if (value().dataSize != size)
            change.push_back({.kind = ChangeKind::ofSize, .number = size});
        value().dataSize = size;
    }

    void become(std::string type)
    {
        value().dataType = std::move(type);
        value().dataSize = 2;
    }

    // Of a type whose largest number is too small another one is wanted.
    void raiseOrBecome()
    {
        if (!raise(value())) {
            change.push_back({.kind = ChangeKind::ofType, .name = "sp78"});
            become("sp78");
            raise(value());
        }
        change.push_back({.kind = ChangeKind::above, .degrees = smcThreshold});
    }

    // The reads of a key that is changed all give the same.
    SMCVal& value()
    {
        auto& reads = machine.reads[key];
        if (reads.empty())
            reads.emplace_back();
        reads.erase(reads.begin(), reads.end() - 1);
        return reads.front().val;
    }

    ThermalMachine machine;
    std::string key;
};

std::int64_t locationOf(const std::string& code)
{
    return fourCharCode(code); // of ASCII, so positive
}

} // namespace

WhatIf::WhatIf(const Inspection& inspected)
    : inspection(inspected)
    , machine{.profile = inspected.profile,
          .processorName = inspected.processorName,
          .keys = {},
          .reads = {},
          .services = {}}
{
    for (const auto& [key, sensor] : inspection.log.sensors)
        machine.keys.push_back(key);
    for (const auto& [key, reads] : inspection.reads) {
        if (key.starts_with('T'))
            machine.reads.emplace(key, reads);
    }
    for (const auto& [key, reads] : inspection.laterReads) {
        if (inspection.log.sensors.contains(key))
            machine.reads.emplace(key, reads);
    }
    const auto& services = inspection.log.services;
    laterServices.resize(services.size());
    for (auto place = services.size(); place-- > 0;) {
        if (const auto next = services[place].replacedBy)
            laterServices[place] = laterServices[*next] + 1;
    }
}

std::optional<Change> WhatIf::changeForKey(const std::string& key) const
{
    auto start = machine;
    if (const auto holder = inspection.log.holders.find(key); holder != inspection.log.holders.end())
        start.services.push_back(inspection.services[holder->second]);
    KeyWay way(std::move(start), key);
    for (int count = 0; count < mostSteps; ++count) {
        const auto step = way.next();
        if (step == KeyWay::Step::arrived)
            return std::move(way.change);
        if (step == KeyWay::Step::impossible)
            break;
    }
    return std::nullopt;
}

std::optional<Change> WhatIf::changeForService(std::size_t place) const
{
    auto change = laterServicesGone(place);
    if (!showService(inspection.services[place], change))
        return std::nullopt;
    return change;
}

std::optional<Change> WhatIf::changeForCode(const std::string& code) const
{
    Change change{{.kind = ChangeKind::serviceWithCode, .name = code}};
    if (!showService({.locationID = locationOf(code), .degrees = std::nullopt}, change))
        return std::nullopt;
    return change;
}

bool WhatIf::showService(HIDRead service, Change& change) const
{
    for (int count = 0; count < mostSteps; ++count) {
        const auto log = collect({machine.profile, machine.processorName, {}, {}, {service}});
        const auto& found = log.services.front();
        if (!found.code) {
            const auto code = unusedCode();
            service.locationID = locationOf(code);
            change.push_back({.kind = ChangeKind::location, .name = code, .number = locationOf(code)});
        } else if (found.outcome == ServiceOutcome::belowThreshold) {
            service.degrees = hidThreshold + 0.5;
            change.push_back({.kind = ChangeKind::eventAbove, .degrees = hidThreshold});
        } else {
            return found.outcome == ServiceOutcome::shown;
        }
    }
    return false;
}

Change WhatIf::laterServicesGone(std::size_t place) const
{
    const auto next = inspection.log.services[place].replacedBy;
    if (!next)
        return {};
    return {{.kind = ChangeKind::laterServicesGone,
        .number = static_cast<std::int64_t>(*next),
        .count = laterServices[place]}};
}

// A code of the catalogue that no service has, if there is one: then none can take the place of the one that gets it.
std::string WhatIf::unusedCode() const
{
    const auto& rows = inspection.log.hidTable->rows;
    const auto unused = std::ranges::find_if(
        rows, [this](const SensorKeyPair& row) { return !inspection.log.holders.contains(keyOf(row)); });
    return std::string(keyOf(unused == rows.end() ? rows.front() : *unused));
}

} // namespace orv
