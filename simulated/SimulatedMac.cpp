#include "simulated/SimulatedMac.h"

#include "base/MainThread.h"
#include "readings/Integers.h"
#include "smc/FourCharCode.h"
#include "smc/SMCValueEncoding.h"

#include <algorithm>
#include <cmath>
#include <thread>
#include <utility>

namespace orv {

namespace {

constexpr std::uint32_t keyCountKey = fourCharCode("#KEY");
// The one kind of service that a machine file describes, and the one event that it has.
constexpr std::int32_t appleVendorPage = 0xff00;
constexpr std::int32_t temperatureUsage = 5;
constexpr std::int32_t temperatureEventType = 15;
constexpr std::int32_t temperatureLevelField = 15 << 16;

class SimulatedHIDService final : public HIDService {
public:
    explicit SimulatedHIDService(const HIDRow& hidRow)
        : row(hidRow)
    {
    }

    Value locationID() override { return row.locationID; }

    std::optional<double> eventValue(std::int32_t eventType, std::int32_t field) override
    {
        if (eventType != temperatureEventType || field != temperatureLevelField)
            return std::nullopt;
        return row.temperature;
    }

private:
    const HIDRow& row;
};

bool hasCode(const HIDRow& service, std::string_view code)
{
    const auto* location = service.locationID.as<std::int64_t>();
    return location && *location > 0 && fourCharString(static_cast<std::uint32_t>(*location)) == code;
}

} // namespace

SimulatedMac::SimulatedMac(const MachineFile& machineFile)
    : machine(machineFile)
{
    if (!machine.smc)
        return;
    for (const auto& row : *machine.smc)
        keys.push_back({row});
    for (auto& key : keys)
        keysByName.emplace(key.row.key, &key);
    addKeyCount();
}

bool SimulatedMac::hasSMC()
{
    return machine.smc.has_value();
}

SMCOutcome SimulatedMac::keyInfo(std::uint32_t name, KeyInfo& info)
{
    delayExchange();
    const auto* key = findKey(name);
    if (!key)
        return SMCOutcome::unknownKey();
    if (key->row.fails)
        return SMCOutcome::failed();
    info = {.dataSize = key->size(), .dataType = key->row.type};
    return {};
}

SMCOutcome SimulatedMac::readBytes(std::uint32_t name, Bytes& bytes)
{
    delayExchange();
    auto* key = findKey(name);
    if (!key)
        return SMCOutcome::unknownKey();
    if (key->row.fails)
        return SMCOutcome::failed();
    const auto& reading = key->row.readings[key->next].bytes;
    std::ranges::copy(reading, bytes.begin());
    key->next = (key->next + 1) % key->row.readings.size();
    return {};
}

SMCOutcome SimulatedMac::keyAtIndex(std::uint32_t index, std::uint32_t& name)
{
    delayExchange();
    if (index >= keys.size())
        return SMCOutcome::unknownKey();
    name = keys[index].row.key;
    return {};
}

std::optional<std::string> SimulatedMac::systemValue(const std::string& name)
{
    const auto found = machine.systemValues.find(name);
    return found == machine.systemValues.end() ? std::nullopt : std::optional(found->second);
}

bool SimulatedMac::forEachService(std::int32_t page, std::int32_t usage, const std::function<void(HIDService&)>& visit)
{
    assertMainThread();
    if (page != appleVendorPage || usage != temperatureUsage)
        return true;
    for (const auto& row : machine.hid) {
        SimulatedHIDService service(row);
        visit(service);
    }
    return true;
}

bool SimulatedMac::setTemperature(std::string_view key, double degrees)
{
    assertMainThread();
    if (!std::isfinite(degrees))
        return false;
    bool isSet = setSMCValue(key, 'T', degrees);
    for (auto& service : machine.hid) {
        if (!hasCode(service, key))
            continue;
        service.temperature = degrees;
        isSet = true;
    }
    return isSet;
}

bool SimulatedMac::setFanSpeed(std::string_view key, double speed)
{
    assertMainThread();
    return std::isfinite(speed) && setSMCValue(key, 'F', speed);
}

void SimulatedMac::apply(const RecordingStep& step)
{
    for (const auto& [name, bytes] : step.smc) {
        auto& key = *findKey(name);
        key.row.fails = !bytes;
        if (!bytes)
            continue;
        key.row.readings = {{*bytes}};
        key.next = 0;
    }
    for (const auto& [service, degrees] : step.hid)
        machine.hid[service].temperature = degrees;
}

std::uint32_t SimulatedMac::Key::size() const
{
    return row.size.value_or(static_cast<std::uint32_t>(row.readings[next].bytes.size()));
}

SimulatedMac::Key* SimulatedMac::findKey(std::uint32_t key)
{
    const auto found = keysByName.find(key);
    return found == keysByName.end() ? nullptr : found->second;
}

void SimulatedMac::addKeyCount()
{
    keyCount.row.key = keyCountKey;
    keyCount.row.type = fourCharCode("ui32");
    keyCount.row.readings = {{.bytes = *encodeValue(*smcValueFormat("ui32"), static_cast<double>(keys.size()))}};
    keysByName.emplace(keyCountKey, &keyCount);
}

void SimulatedMac::delayExchange() const
{
    if (machine.exchangeDelay.count() > 0)
        std::this_thread::sleep_for(machine.exchangeDelay);
}

bool SimulatedMac::setSMCValue(std::string_view name, char kind, double number)
{
    auto* key = name.size() == 4 && name.starts_with(kind) ? findKey(fourCharCode(name)) : nullptr;
    const auto* format = key ? smcValueFormat(fourCharString(key->row.type)) : nullptr;
    if (!format || key->size() == 0 || (format->requiredSize != 0 && format->requiredSize != key->size()))
        return false;
    const auto bytes = encodeValue(*format, number);
    if (!bytes)
        return false;
    key->row.size = key->size();
    key->row.readings = {{.bytes = *bytes}};
    key->next = 0;
    return true;
}

} // namespace orv
