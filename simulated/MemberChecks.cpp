#include "simulated/MemberChecks.h"

#include "readings/Text.h"
#include "json/JSONWriter.h"

#include <algorithm>
#include <cstddef>

namespace orv {

namespace {

constexpr std::size_t largestReading = 32;

} // namespace

void MemberChecks::refuse(const std::string& member, const std::string& what)
{
    if (fault.empty())
        fault = member.empty() ? what : member + ": " + what;
}

void MemberChecks::allowMembers(
    const Dictionary& dictionary, const std::string& path, std::initializer_list<std::string_view> known)
{
    for (const auto& [key, value] : dictionary) {
        if (std::ranges::find(known, key) == known.end())
            refuse(path + printableASCII(key), "unknown member");
    }
}

std::string MemberChecks::text(const Value& value, const std::string& member)
{
    const auto* text = value.as<std::string>();
    if (!text)
        refuse(member, "not a text");
    return text ? *text : "";
}

std::optional<std::int64_t> MemberChecks::integer(
    const Value& value, const std::string& member, std::int64_t low, std::int64_t high)
{
    const auto* number = value.as<std::int64_t>();
    if (number && *number >= low && *number <= high)
        return *number;
    refuse(member, "not a whole number from " + std::to_string(low) + " to " + std::to_string(high));
    return std::nullopt;
}

double MemberChecks::numberWithin(
    const Value& value, const std::string& member, double low, double high, const std::string& range)
{
    const auto found = numberOf(value);
    if (!found || !(*found >= low && *found <= high))
        refuse(member, "not a number " + range);
    return found.value_or(0);
}

bool MemberChecks::truth(const Value& value, const std::string& member)
{
    const auto* found = value.as<bool>();
    if (!found)
        refuse(member, "neither true nor false");
    return found && *found;
}

std::uint32_t MemberChecks::fourCharacters(const Value& value, const std::string& member, char32_t low, char32_t high)
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

std::uint32_t MemberChecks::smcKey(const Value& value, const std::string& member)
{
    return fourCharacters(value, member, 0x20, 0x7E);
}

SMCReading MemberChecks::reading(const Value& value, const std::string& member)
{
    SMCReading result;
    const auto digits = text(value, member);
    if (digits.size() % 2 != 0)
        refuse(member, "an odd number of hexadecimal digits");
    if (digits.size() > 2 * largestReading)
        refuse(member, "more than 32 bytes");
    for (std::size_t index = 0; index + 1 < digits.size() && fault.empty(); index += 2)
        result.bytes += static_cast<char>(nibble(digits[index], member) << 4 | nibble(digits[index + 1], member));
    return result;
}

int MemberChecks::nibble(char digit, const std::string& member)
{
    constexpr std::string_view lower = "0123456789abcdef";
    const auto value = lower.find(digit >= 'A' && digit <= 'F' ? static_cast<char>(digit - 'A' + 'a') : digit);
    if (value == std::string_view::npos)
        refuse(member, "not hexadecimal");
    return value == std::string_view::npos ? 0 : static_cast<int>(value);
}

std::string printableASCII(std::string_view text)
{
    std::string result;
    for (const char character : text.substr(0, 100))
        result += character >= ' ' && character <= '~' ? character : '?';
    return result;
}

std::optional<double> numberOf(const Value& value)
{
    if (const auto* integer = value.as<std::int64_t>())
        return static_cast<double>(*integer);
    if (const auto* natural = value.as<std::uint64_t>())
        return static_cast<double>(*natural);
    const auto* real = value.as<double>();
    return real ? std::optional(*real) : std::nullopt;
}

std::string verbatim(const Value& value)
{
    const auto* text = value.as<std::string>();
    return text ? *text : writeJSON(value, KeyOrder::asListed);
}

} // namespace orv
