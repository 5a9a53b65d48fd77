#pragma once

#include <algorithm>
#include <array>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <functional>
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
    std::span<const std::uint64_t> ordinals; ///< Those of the sorted rows' keys.

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

// What the tables are made with, and proved with, at compile time.

/// The pattern with every '#' replaced by the number in decimal and every '?' by its lower-case hexadecimal digit.
/// A number that needs more than two decimal digits, or one hexadecimal digit, does not compile.
template <typename Text> consteval Text filledIn(std::string_view pattern, std::size_t number)
{
    Text text;
    const auto append = [&text](char character) { text.characters[text.length++] = character; };
    constexpr std::string_view decimalDigits = "0123456789";
    constexpr std::string_view hexadecimalDigits = "0123456789abcdef";
    for (const char character : pattern) {
        if (character == '?') {
            append(hexadecimalDigits.at(number));
        } else if (character == '#') {
            if (number >= 10)
                append(decimalDigits.at(number / 10));
            append(decimalDigits.at(number % 10));
        } else {
            append(character);
        }
    }
    return text;
}

/// One row for each number from first to last; the name's number is larger by nameOffset.
template <std::size_t first, std::size_t last>
consteval auto family(std::string_view keyPattern, std::string_view namePattern, std::size_t nameOffset = 0)
{
    std::array<SensorKeyPair, last - first + 1> rows;
    for (std::size_t number = first; number <= last; ++number)
        rows[number - first] = {filledIn<decltype(SensorKeyPair::key)>(keyPattern, number),
            filledIn<decltype(SensorKeyPair::name)>(namePattern, number + nameOffset)};
    return rows;
}

/// One row for each key, the names numbered from 1.
template <std::size_t count>
consteval auto numbered(const std::array<SensorKey, count>& keys, std::string_view namePattern)
{
    std::array<SensorKeyPair, count> rows;
    for (std::size_t index = 0; index < count; ++index)
        rows[index] = {keys[index], filledIn<decltype(SensorKeyPair::name)>(namePattern, index + 1)};
    return rows;
}

/// Runs of rows, one after the other.
template <std::size_t... counts> consteval auto joined(const std::array<SensorKeyPair, counts>&... runs)
{
    std::array<SensorKeyPair, (counts + ...)> rows;
    auto next = rows.begin();
    ((next = std::ranges::copy(runs, next).out), ...);
    return rows;
}

template <typename Row, std::size_t count> consteval auto sortedByKey(std::array<Row, count> rows)
{
    std::ranges::sort(rows, std::ranges::less{}, [](const Row& row) { return keyOf(row); });
    return rows;
}

template <typename Row, std::size_t count> consteval auto ordinalsOf(const std::array<Row, count>& rows)
{
    std::array<std::uint64_t, count> ordinals{};
    std::ranges::transform(rows, ordinals.begin(), [](const Row& row) { return ordinal(keyOf(row)); });
    return ordinals;
}

template <typename Row, std::size_t count> consteval bool keysAreUnique(const std::array<Row, count>& rows)
{
    const auto sorted = sortedByKey(rows);
    const auto sameKey = [](const Row& left, const Row& right) { return keyOf(left) == keyOf(right); };
    return std::ranges::adjacent_find(sorted, sameKey) == sorted.end();
}

template <typename Row, std::size_t count>
consteval std::size_t keysOfLength(std::size_t length, const std::array<Row, count>& rows)
{
    std::size_t found = 0;
    for (const Row& row : rows)
        found += keyOf(row).size() == length ? 1 : 0;
    return found;
}

consteval bool isSubset(const KeyList& keys, const SensorTable& table)
{
    return std::ranges::all_of(keys.rows, [&table](const SensorKey& key) { return table.contains(key); });
}

} // namespace orv
