#pragma once

#include "readings/Value.h"
#include "simulated/MachineFile.h"

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>

namespace orv {

/// What the objects of a machine file and the lines of a recording have in common: members are checked and converted.
/// The first fault is kept, with the path of its member; what is returned after a fault does not matter.
class MemberChecks {
public:
    std::string fault;

protected:
    void refuse(const std::string& member, const std::string& what);
    void allowMembers(
        const Dictionary& dictionary, const std::string& path, std::initializer_list<std::string_view> known);

    std::string text(const Value& value, const std::string& member);
    std::optional<std::int64_t> integer(
        const Value& value, const std::string& member, std::int64_t low, std::int64_t high);
    double numberWithin(
        const Value& value, const std::string& member, double low, double high, const std::string& range);
    bool truth(const Value& value, const std::string& member);
    std::uint32_t fourCharacters(const Value& value, const std::string& member, char32_t low, char32_t high);
    /// An SMC key's four characters, which are printable ASCII.
    std::uint32_t smcKey(const Value& value, const std::string& member);
    /// At most 32 bytes, as hexadecimal digits.
    SMCReading reading(const Value& value, const std::string& member);

private:
    int nibble(char digit, const std::string& member);
};

/// A fault is one line whatever the file holds.
std::string printableASCII(std::string_view text);

std::optional<double> numberOf(const Value& value);

/// A text as it stands, any other value as JSON.
std::string verbatim(const Value& value);

} // namespace orv
