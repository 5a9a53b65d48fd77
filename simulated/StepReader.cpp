#include "simulated/StepReader.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace orv {

namespace {

constexpr double longestRecording = 1e9; // seconds, some thirty years

struct EventName {
    std::string_view name;
    RecordedEvent event;
};

constexpr std::array<EventName, 4> eventNames{{
    {"sleep", RecordedEvent::sleep},
    {"wake", RecordedEvent::wake},
    {"connect", RecordedEvent::connect},
    {"pair", RecordedEvent::pair},
}};

bool isNull(const Value& value)
{
    return value.as<std::nullptr_t>() != nullptr;
}

} // namespace

StepReader::StepReader(const std::set<std::uint32_t>& machineKeys, std::size_t machineServices, double previousMoment)
    : keys(machineKeys)
    , services(machineServices)
    , previous(previousMoment)
{
}

RecordingStep StepReader::read(const Value& line)
{
    RecordingStep step;
    const auto* members = line.as<Dictionary>();
    const auto* at = members ? members->find("at") : nullptr;
    if (!at) {
        refuse("", members ? "at: required, but not there" : "not an object");
        return step;
    }
    allowMembers(*members, "", {"at", "smc", "hid", "bluetooth", "watch", "event"});
    step.at = numberWithin(*at, "at", 0, longestRecording, "from 0 to 1000000000 (seconds)");
    if (step.at < previous)
        refuse("at", "before the step before it");
    if (const auto* smc = members->find("smc"))
        readSMC(*smc, step);
    if (const auto* hid = members->find("hid"))
        readHID(*hid, step);
    if (const auto* bluetooth = members->find("bluetooth"))
        step.profilerOutput = isNull(*bluetooth) ? "" : verbatim(*bluetooth);
    if (const auto* watch = members->find("watch"))
        step.watchFile = isNull(*watch) ? std::nullopt : std::optional(verbatim(*watch));
    if (const auto* happened = members->find("event"))
        step.event = event(*happened);
    return step;
}

void StepReader::readSMC(const Value& values, RecordingStep& step)
{
    const auto* members = values.as<Dictionary>();
    if (!members) {
        refuse("smc", "not an object");
        return;
    }
    step.smc.reserve(members->size());
    for (const auto& [name, value] : *members) {
        const auto member = "smc." + printableASCII(name);
        const auto key = smcKey(name, member);
        if (!keys.contains(key))
            refuse(member, "the machine has no such key");
        if (isNull(value))
            step.smc.emplace_back(key, std::nullopt);
        else
            step.smc.emplace_back(key, reading(value, member).bytes);
    }
}

void StepReader::readHID(const Value& values, RecordingStep& step)
{
    const auto* members = values.as<Dictionary>();
    if (!members) {
        refuse("hid", "not an object");
        return;
    }
    for (const auto& [number, value] : *members) {
        const auto member = "hid." + printableASCII(number);
        const auto degrees = numberOf(value);
        if (!degrees && !isNull(value))
            refuse(member, "neither a number nor null");
        step.hid.emplace_back(service(number, member), degrees);
    }
}

std::size_t StepReader::service(const std::string& number, const std::string& member)
{
    const bool isNumber = !number.empty() && number.size() < 9
        && std::ranges::all_of(number, [](char digit) { return digit >= '0' && digit <= '9'; });
    const auto place = isNumber ? static_cast<std::size_t>(std::stoul(number)) : services;
    if (place >= services)
        refuse(member, "the machine has no such service");
    return place;
}

std::optional<RecordedEvent> StepReader::event(const Value& value)
{
    const auto* name = value.as<std::string>();
    const auto found = name ? std::ranges::find(eventNames, *name, &EventName::name) : eventNames.end();
    if (found != eventNames.end())
        return found->event;
    refuse("event", "none of sleep, wake, connect and pair");
    return std::nullopt;
}

} // namespace orv
