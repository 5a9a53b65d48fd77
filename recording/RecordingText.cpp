#include "recording/RecordingText.h"

#include "thermal/ZpSystemInfo.h"
#include "json/JSONWriter.h"

#include <sys/sysctl.h>

#include <algorithm>
#include <cstddef>
#include <utility>

namespace orv {

namespace {

// More cores than any table counts: a count above is the same to a collection.
constexpr std::int64_t mostCores = 1024;

std::optional<std::int64_t> coreCount(const char* name)
{
    std::int64_t count = 4; // as collections ask: the kernel fills the low half
    std::size_t size = sizeof(count);
    if (sysctlbyname(name, &count, &size, nullptr, 0) != 0)
        return std::nullopt;
    return std::clamp<std::int64_t>(count, 0, mostCores);
}

std::string hexadecimal(std::string_view bytes)
{
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    for (const char byte : bytes) {
        text += digits[static_cast<unsigned char>(byte) >> 4];
        text += digits[static_cast<unsigned char>(byte) & 15];
    }
    return text;
}

std::string json(const Value& value)
{
    return writeJSON(value, KeyOrder::asListed, Spacing::none);
}

Value systemValues(const MachineIdentity& identity)
{
    std::vector<Member> members{{"hw.model", identity.model}, {"machdep.cpu.brand_string", identity.processor}};
    if (identity.performanceCores)
        members.push_back({"hw.perflevel0.logicalcpu", *identity.performanceCores});
    if (identity.efficiencyCores)
        members.push_back({"hw.perflevel1.logicalcpu", *identity.efficiencyCores});
    return Dictionary(std::move(members));
}

Value keyRow(const std::string& name, const RecordedKey& key)
{
    std::vector<Member> members{{"key", name}};
    if (!key.type.empty())
        members.push_back({"type", key.type});
    members.push_back({"bytes", hexadecimal(key.bytes)});
    if (key.size != key.bytes.size())
        members.push_back({"size", std::int64_t{key.size}});
    if (key.fails)
        members.push_back({"fails", true});
    return Dictionary(std::move(members));
}

Value serviceRow(const RecordedService& service)
{
    std::vector<Member> members;
    if (service.locationID)
        members.push_back({"locationID", *service.locationID});
    if (service.degrees)
        members.push_back({"temperature", *service.degrees});
    return Dictionary(std::move(members));
}

std::string listOfRows(const std::vector<std::string>& rows)
{
    std::string text;
    for (const auto& row : rows)
        text.append(text.empty() ? "[\n    " : ",\n    ").append(row);
    return text.empty() ? "[]" : text + "\n  ]";
}

Dictionary changedKeys(const RecordedMoment& before, const RecordedMoment& after)
{
    std::vector<Member> members;
    const auto count = std::min(before.smc.size(), after.smc.size());
    for (std::size_t row = 0; row < count; ++row) {
        const auto& [name, key] = after.smc[row];
        if (key == before.smc[row].second)
            continue;
        members.push_back({name, key.fails ? Value() : Value(hexadecimal(key.bytes))});
    }
    return Dictionary(std::move(members));
}

Dictionary changedServices(const RecordedMoment& before, const RecordedMoment& after)
{
    std::vector<Member> members;
    const auto count = std::min(before.hid.size(), after.hid.size());
    for (std::size_t row = 0; row < count; ++row) {
        const auto& degrees = after.hid[row].degrees;
        if (degrees != before.hid[row].degrees)
            members.push_back({std::to_string(row), degrees ? Value(*degrees) : Value()});
    }
    return Dictionary(std::move(members));
}

} // namespace

MachineIdentity machineIdentity()
{
    return {ZpSystemInfo::modelIdentifier(), ZpSystemInfo::cpuBrandString(), coreCount("hw.perflevel1.logicalcpu"),
        coreCount("hw.perflevel0.logicalcpu")};
}

std::string firstObject(
    const MachineIdentity& identity, const RecordedMoment& moment, bool hasSMC, const Value& profilerOutput)
{
    std::vector<std::string> keys;
    for (const auto& [name, key] : moment.smc)
        keys.push_back(json(keyRow(name, key)));
    std::vector<std::string> services;
    for (const auto& service : moment.hid)
        services.push_back(json(serviceRow(service)));
    std::string text = "{\n  \"format\": 1,\n  \"description\": ";
    text += json(identity.model + " (" + identity.processor + ")");
    text += ",\n  \"sysctl\": " + json(systemValues(identity));
    if (hasSMC)
        text += ",\n  \"smc\": " + listOfRows(keys);
    if (!services.empty())
        text += ",\n  \"hid\": " + listOfRows(services);
    text += ",\n  \"bluetooth\": " + json(profilerOutput);
    if (moment.watch)
        text += ",\n  \"watch\": " + json(*moment.watch);
    return text + "\n}\n";
}

std::vector<Member> changes(const RecordedMoment& before, const RecordedMoment& after)
{
    std::vector<Member> members;
    if (auto keys = changedKeys(before, after); !keys.empty())
        members.push_back({"smc", std::move(keys)});
    if (auto services = changedServices(before, after); !services.empty())
        members.push_back({"hid", std::move(services)});
    if (after.watch != before.watch)
        members.push_back({"watch", after.watch.value_or(Value())});
    return members;
}

Value momentOf(double seconds)
{
    const auto whole = static_cast<std::int64_t>(seconds);
    const bool isWhole = static_cast<double>(whole) == seconds;
    return isWhole ? Value(whole) : Value(seconds);
}

std::string stepLine(double at, std::vector<Member> members)
{
    members.insert(members.begin(), {"at", momentOf(at)});
    return json(Dictionary(std::move(members))) + '\n';
}

} // namespace orv
