#include "simulated/MachineFile.h"

#include "simulated/MemberChecks.h"
#include "json/JSONReader.h"

#include <algorithm>
#include <cstring>
#include <initializer_list>
#include <set>
#include <string_view>
#include <utility>

namespace orv {

namespace {

constexpr std::int64_t newestFormat = 1;
constexpr double longestExchangeDelay = 60'000;
constexpr std::string_view emptyReport = R"({"SPBluetoothDataType": []})";

class MachineReader : public MemberChecks {
public:
    MachineFile read(const Value& document)
    {
        MachineFile machine;
        const auto* top = document.as<Dictionary>();
        if (!top) {
            refuse("", "the top level is not an object");
            return machine;
        }
        allowMembers(
            *top, "", {"format", "description", "sysctl", "exchangeDelay", "smc", "hid", "bluetooth", "watch"});
        readFormat(top->find("format"));
        if (const auto* description = top->find("description"))
            machine.description = text(*description, "description");
        readSystemValues(top->find("sysctl"), machine);
        if (const auto* delay = top->find("exchangeDelay"))
            machine.exchangeDelay = decltype(machine.exchangeDelay)(
                numberWithin(*delay, "exchangeDelay", 0, longestExchangeDelay, "from 0 to 60000 (milliseconds)"));
        if (const auto* smc = top->find("smc"))
            readSMC(*smc, machine);
        if (const auto* hid = top->find("hid"))
            readHID(*hid, machine);
        const auto* bluetooth = top->find("bluetooth");
        machine.profilerOutput = bluetooth ? verbatim(*bluetooth) : std::string(emptyReport);
        if (const auto* watch = top->find("watch"))
            machine.watchFile = verbatim(*watch);
        return machine;
    }

private:
    void readFormat(const Value* format)
    {
        const auto* number = format ? format->as<std::int64_t>() : nullptr;
        if (number && *number > newestFormat)
            refuse("format", std::to_string(*number) + " is newer than this program, which knows 1");
        else if (format && (!number || *number < 1))
            refuse("format", "not a whole number from 1 on");
    }

    void readSystemValues(const Value* sysctl, MachineFile& machine)
    {
        const auto* values = sysctl ? sysctl->as<Dictionary>() : nullptr;
        if (!values) {
            refuse("sysctl", sysctl ? "not an object" : "required, but not there");
            return;
        }
        for (const auto& [name, value] : *values) {
            const auto member = "sysctl." + printableASCII(name);
            if (const auto* text = value.as<std::string>())
                machine.systemValues[name] = *text + '\0';
            else if (const auto number = integer(value, member, INT32_MIN, UINT32_MAX))
                machine.systemValues[name] = nativeBytes(static_cast<std::uint32_t>(*number));
        }
    }

    static std::string nativeBytes(std::uint32_t number)
    {
        std::string bytes(sizeof(number), '\0');
        std::memcpy(bytes.data(), &number, sizeof(number));
        return bytes;
    }

    void readSMC(const Value& smc, MachineFile& machine)
    {
        const auto* rows = smc.as<Array>();
        if (!rows) {
            refuse("smc", "not a list");
            return;
        }
        machine.smc.emplace();
        std::set<std::uint32_t> keys;
        for (std::size_t index = 0; index < rows->size() && fault.empty(); ++index) {
            const auto path = "smc[" + std::to_string(index) + "]";
            machine.smc->push_back(readSMCRow((*rows)[index], path));
            if (!keys.insert(machine.smc->back().key).second)
                refuse(path + ".key", "the key is listed twice");
        }
    }

    SMCRow readSMCRow(const Value& value, const std::string& path)
    {
        SMCRow row;
        const auto* members = value.as<Dictionary>();
        if (!members || !members->find("key")) {
            refuse(path, members ? "has no key" : "not an object");
            return row;
        }
        allowMembers(*members, path + ".", {"key", "type", "bytes", "size", "fails"});
        row.key = smcKey(*members->find("key"), path + ".key");
        if (const auto* type = members->find("type"))
            row.type = fourCharacters(*type, path + ".type", 0x00, 0xFF);
        if (const auto* bytes = members->find("bytes"))
            row.readings = readings(*bytes, path + ".bytes");
        if (const auto* size = members->find("size"))
            row.size = static_cast<std::uint32_t>(integer(*size, path + ".size", 0, UINT32_MAX).value_or(0));
        if (const auto* fails = members->find("fails"))
            row.fails = truth(*fails, path + ".fails");
        return row;
    }

    std::vector<SMCReading> readings(const Value& value, const std::string& member)
    {
        const auto* list = value.as<Array>();
        if (!list)
            return {reading(value, member)};
        if (list->empty())
            refuse(member, "an empty list");
        std::vector<SMCReading> result;
        for (std::size_t index = 0; index < list->size(); ++index)
            result.push_back(reading((*list)[index], member + "[" + std::to_string(index) + "]"));
        return result;
    }

    void readHID(const Value& hid, MachineFile& machine)
    {
        const auto* services = hid.as<Array>();
        if (!services) {
            refuse("hid", "not a list");
            return;
        }
        for (std::size_t index = 0; index < services->size() && fault.empty(); ++index)
            machine.hid.push_back(readHIDRow((*services)[index], "hid[" + std::to_string(index) + "]"));
    }

    HIDRow readHIDRow(const Value& value, const std::string& path)
    {
        HIDRow row;
        const auto* members = value.as<Dictionary>();
        if (!members) {
            refuse(path, "not an object");
            return row;
        }
        allowMembers(*members, path + ".", {"locationID", "temperature"});
        if (const auto* location = members->find("locationID")) {
            row.locationID = *location;
            if (!numberOf(*location) && !location->as<std::string>())
                refuse(path + ".locationID", "neither a number nor a text");
        }
        if (const auto* temperature = members->find("temperature")) {
            row.temperature = numberOf(*temperature);
            if (!row.temperature)
                refuse(path + ".temperature", "not a number");
        }
        return row;
    }
};

} // namespace

std::optional<MachineFile> parseMachine(std::string_view bytes, std::string& fault)
{
    const auto document = parseStrictJSON(bytes, fault);
    if (!document) {
        fault = printableASCII(fault);
        return std::nullopt;
    }
    MachineReader reader;
    auto machine = reader.read(*document);
    fault = reader.fault;
    return fault.empty() ? std::optional(std::move(machine)) : std::nullopt;
}

} // namespace orv
