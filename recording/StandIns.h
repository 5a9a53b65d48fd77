#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>

namespace orv {

/// What stands in a recording for the texts of a person's devices. One text always gets the same one.
class StandIns {
public:
    /// For a device key, as the report's walk makes it of an address: "00-00-00-00-00-01", …
    std::string deviceKey(std::string_view key);
    /// For an address as a report states it: the same with colons. Two that make one device key get one.
    std::string address(std::string_view address);
    /// "Device 1", …
    std::string deviceName(std::string_view name) { return numbered(names, "Device ", name); }
    /// A key of a watch file, below its entries' keys: "key 1", … An address keeps the form of one.
    std::string watchKey(std::string_view key) { return addressOr(keys, "key ", key); }
    /// A text of a watch file: "text 1", … Likewise.
    std::string watchText(std::string_view text) { return addressOr(texts, "text ", text); }

    /// How many texts have one.
    std::size_t count() const;

private:
    using Numbers = std::map<std::string, std::size_t, std::less<>>;

    static std::size_t numberOf(Numbers& numbers, std::string_view text);
    static std::string numbered(Numbers& numbers, const char* word, std::string_view text);
    std::string addressOr(Numbers& numbers, const char* word, std::string_view text);

    Numbers deviceKeys;
    Numbers names;
    Numbers keys;
    Numbers texts;
};

} // namespace orv
