#pragma once

#include "smc/FourCharCode.h"

#include <algorithm>
#include <array>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace orv {

/// Constant text stored inline, so that a table of it needs neither pointers nor start-up code.
/// Made from a literal; one longer than the capacity does not compile.
template <std::size_t capacity> struct InlineText {
    static_assert(capacity <= UINT8_MAX);

    char characters[capacity]{};
    std::uint8_t length = 0;

    constexpr InlineText() = default;

    template <std::size_t size>
        requires(size <= capacity + 1)
    constexpr InlineText(const char (&literal)[size])
        : length(static_cast<std::uint8_t>(size - 1))
    {
        std::copy_n(literal, size - 1, characters);
    }

    constexpr operator std::string_view() const { return {characters, length}; }

    template <std::convertible_to<std::string_view> Text> constexpr bool operator==(const Text& other) const
    {
        return std::string_view(*this) == std::string_view(other);
    }
};

/// The code of an SMC or HID sensor: four characters, five in a few rows that no hardware can answer.
using SensorKey = InlineText<5>;

/// One sensor: its code and its display title.
struct SensorKeyPair {
    SensorKey key;
    InlineText<33> name;
};

constexpr std::string_view keyOf(const SensorKey& key)
{
    return key;
}
constexpr std::string_view keyOf(const SensorKeyPair& row)
{
    return row.key;
}

/// The first eight bytes as a number: texts without NUL compare as their numbers do, and texts of one length up to
/// eight are equal when their numbers are.
constexpr std::uint64_t ordinal(std::string_view text)
{
    if (text.size() == 4) // what most keys are
        return std::uint64_t{fourCharCode(text)} << 32;
    std::uint64_t number = 0;
    std::size_t missing = sizeof(number);
    for (const char character : text.substr(0, sizeof(number))) {
        number = number << 8 | static_cast<unsigned char>(character);
        --missing;
    }
    return missing == sizeof(number) ? 0 : number << 8 * missing;
}

static_assert(sizeof(SensorKey::characters) <= sizeof(std::uint64_t)); // so a table's numbers tell its keys apart

/// A constant list of rows with distinct keys. It refers to its rows and owns nothing.
template <typename Row> struct KeyedTable {
    std::span<const Row> rows; ///< In catalogue order.
    std::span<const Row> sorted; ///< The same rows in ascending order of the key's bytes.
    /// Those of the sorted rows' keys. Looked up by text, a refresh would take an eighth more instructions.
    std::span<const std::uint64_t> ordinals;

    /// The row of a key, compared exactly and case-sensitively; nullptr when the table does not name it.
    constexpr const Row* find(std::string_view key) const
    {
        const auto number = ordinal(key);
        const auto place = std::ranges::lower_bound(ordinals, number);
        if (place == ordinals.end() || *place != number)
            return nullptr;
        const auto& row = sorted[static_cast<std::size_t>(place - ordinals.begin())];
        return keyOf(row).size() == key.size() ? &row : nullptr;
    }

    constexpr bool contains(std::string_view key) const { return find(key) != nullptr; }
};

/// A table of sensors: which SMC or HID keys are candidates, and what to call them.
using SensorTable = KeyedTable<SensorKeyPair>;

/// A list of keys without titles, asked for membership only.
using KeyList = KeyedTable<SensorKey>;

} // namespace orv
