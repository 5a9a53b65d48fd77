#include "simulated/MachineFile.h"

#include "base/File.h"
#include "readings/Text.h"
#include "smc/FourCharCode.h"
#include "json/JSONReader.h"
#include "json/JSONWriter.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <initializer_list>
#include <set>
#include <string_view>
#include <utility>

namespace orv {

namespace {

constexpr std::size_t largestMachineFile = 64u << 20;
constexpr std::size_t largestReading = 32;
constexpr double longestExchangeDelay = 60'000;
constexpr std::string_view emptyReport = R"({"SPBluetoothDataType": []})";

// A fault is one line whatever the file holds.
std::string printable(std::string_view text)
{
    std::string result;
    for (const char character : text.substr(0, 100))
        result += character >= ' ' && character <= '~' ? character : '?';
    return result;
}

/// Checks and converts one file's members. The first fault is kept, with the path of its member; what is returned after
/// a fault does not matter.
class MachineReader {
public:
    std::string fault;

    MachineFile read(const Value& document)
    {
        MachineFile machine;
        const auto* top = document.as<Dictionary>();
        if (!top) {
            refuse("", "the top level is not an object");
            return machine;
        }
        allowMembers(*top, "", {"description", "sysctl", "exchangeDelay", "smc", "hid", "bluetooth", "watch"});
        if (const auto* description = top->find("description"))
            machine.description = text(*description, "description");
        readSystemValues(top->find("sysctl"), machine);
        if (const auto* delay = top->find("exchangeDelay"))
            machine.exchangeDelay =
                decltype(machine.exchangeDelay)(numberWithin(*delay, "exchangeDelay", 0, longestExchangeDelay));
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
    void refuse(const std::string& member, const std::string& what)
    {
        if (fault.empty())
            fault = member.empty() ? what : member + ": " + what;
    }

    void allowMembers(
        const Dictionary& dictionary, const std::string& path, std::initializer_list<std::string_view> known)
    {
        for (const auto& [key, value] : dictionary) {
            if (std::ranges::find(known, key) == known.end())
                refuse(path + printable(key), "unknown member");
        }
    }

    static std::string verbatim(const Value& value)
    {
        const auto* text = value.as<std::string>();
        return text ? *text : writeJSON(value, KeyOrder::asListed);
    }

    std::string text(const Value& value, const std::string& member)
    {
        const auto* text = value.as<std::string>();
        if (!text)
            refuse(member, "not a text");
        return text ? *text : "";
    }

    std::optional<std::int64_t> integer(
        const Value& value, const std::string& member, std::int64_t low, std::int64_t high)
    {
        const auto* number = value.as<std::int64_t>();
        if (number && *number >= low && *number <= high)
            return *number;
        refuse(member, "not a whole number from " + std::to_string(low) + " to " + std::to_string(high));
        return std::nullopt;
    }

    std::optional<double> number(const Value& value)
    {
        if (const auto* integer = value.as<std::int64_t>())
            return static_cast<double>(*integer);
        if (const auto* natural = value.as<std::uint64_t>())
            return static_cast<double>(*natural);
        const auto* real = value.as<double>();
        return real ? std::optional(*real) : std::nullopt;
    }

    double numberWithin(const Value& value, const std::string& member, double low, double high)
    {
        const auto found = number(value);
        if (!found || *found < low || *found > high)
            refuse(member, "not a number from 0 to 60000 (milliseconds)");
        return found.value_or(0);
    }

    void readSystemValues(const Value* sysctl, MachineFile& machine)
    {
        const auto* values = sysctl ? sysctl->as<Dictionary>() : nullptr;
        if (!values) {
            refuse("sysctl", sysctl ? "not an object" : "required, but not there");
            return;
        }
        for (const auto& [name, value] : *values) {
            const auto member = "sysctl." + printable(name);
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
        row.key = fourCharacters(*members->find("key"), path + ".key", 0x20, 0x7E);
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

    std::uint32_t fourCharacters(const Value& value, const std::string& member, char32_t low, char32_t high)
    {
        std::uint32_t code = 0;
        std::size_t count = 0;
        const auto content = text(value, member);
        for (std::string_view rest = content; !rest.empty(); ++count) {
            const auto [character, length] = decodeCharacter(rest);
            if (!character || *character < low || *character > high)
                refuse(member, "has a character that no such code holds");
            code = code << 8 | static_cast<std::uint8_t>(character.value_or(0));
            rest.remove_prefix(length);
        }
        if (count != 4)
            refuse(member, "not four characters");
        return code;
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

    SMCReading reading(const Value& value, const std::string& member)
    {
        SMCReading result;
        const auto digits = text(value, member);
        if (digits.size() % 2 != 0)
            refuse(member, "an odd number of hexadecimal digits");
        if (digits.size() > 2 * largestReading)
            refuse(member, "more than 32 bytes");
        for (std::size_t index = 0; index + 1 < digits.size(); index += 2)
            result.bytes += static_cast<char>(nibble(digits[index], member) << 4 | nibble(digits[index + 1], member));
        return result;
    }

    int nibble(char digit, const std::string& member)
    {
        constexpr std::string_view lower = "0123456789abcdef";
        const auto value = lower.find(digit >= 'A' && digit <= 'F' ? static_cast<char>(digit - 'A' + 'a') : digit);
        if (value == std::string_view::npos)
            refuse(member, "not hexadecimal");
        return value == std::string_view::npos ? 0 : static_cast<int>(value);
    }

    bool truth(const Value& value, const std::string& member)
    {
        const auto* found = value.as<bool>();
        if (!found)
            refuse(member, "neither true nor false");
        return found && *found;
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
            if (!number(*location) && !location->as<std::string>())
                refuse(path + ".locationID", "neither a number nor a text");
        }
        if (const auto* temperature = members->find("temperature")) {
            row.temperature = number(*temperature);
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
        fault = printable(fault);
        return std::nullopt;
    }
    MachineReader reader;
    auto machine = reader.read(*document);
    fault = reader.fault;
    return fault.empty() ? std::optional(std::move(machine)) : std::nullopt;
}

std::optional<MachineFile> readMachineFile(const std::string& path, std::string& fault)
{
    const auto bytes = readFile(path, largestMachineFile);
    auto machine = bytes ? parseMachine(*bytes, fault) : std::nullopt;
    if (!machine)
        fault = path + ": " + (bytes ? fault : std::strerror(errno));
    return machine;
}

} // namespace orv
