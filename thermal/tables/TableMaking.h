#pragma once

#include "thermal/KeyedTable.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>

namespace orv {

// What the tables are made with at compile time.

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

// What the tables are proved with; the compile error about a fault names its key.

constexpr const SensorKey& sensorKeyOf(const SensorKey& key)
{
    return key; // NOLINT(bugprone-return-const-ref-from-parameter): a row, which its table keeps
}
constexpr const SensorKey& sensorKeyOf(const SensorKeyPair& row)
{
    return row.key;
}

/// The first key that stands in more than one row; empty when each stands in one.
template <typename Row, std::size_t count> consteval SensorKey repeatedKey(const std::array<Row, count>& rows)
{
    const auto sorted = sortedByKey(rows);
    const auto sameKey = [](const Row& left, const Row& right) { return keyOf(left) == keyOf(right); };
    const auto found = std::ranges::adjacent_find(sorted, sameKey);
    return found == sorted.end() ? SensorKey() : sensorKeyOf(*found);
}

/// The first key that does not begin with "T"; empty when all do.
template <typename Row, std::size_t count> consteval SensorKey keyWithoutT(const std::array<Row, count>& rows)
{
    const auto found = std::ranges::find_if_not(rows, [](const Row& row) { return keyOf(row).starts_with('T'); });
    return found == rows.end() ? SensorKey() : sensorKeyOf(*found);
}

template <SensorKey key> consteval bool isNotRepeated()
{
    static_assert(key == SensorKey(), "this key stands in two rows of one table");
    return true;
}

template <SensorKey key> consteval bool isNotStrange()
{
    static_assert(key == SensorKey(), "this key is no temperature of an SMC, and so is never read");
    return true;
}

template <const auto& rows> consteval bool keysAreUnique()
{
    return isNotRepeated<repeatedKey(rows)>();
}

/// For the tables that the SMC's keys are looked up in: of those only the ones that begin with "T" are.
template <const auto& rows> consteval bool keysBeginWithT()
{
    return isNotStrange<keyWithoutT(rows)>();
}

template <typename Row, std::size_t count>
consteval std::size_t keysOfLength(std::size_t length, const std::array<Row, count>& rows)
{
    std::size_t found = 0;
    for (const Row& row : rows)
        found += keyOf(row).size() == length ? 1 : 0;
    return found;
}

template <typename Row, typename OtherRow>
consteval bool sharesNoKey(const KeyedTable<Row>& table, const KeyedTable<OtherRow>& other)
{
    return std::ranges::none_of(table.rows, [&other](const Row& row) { return other.contains(keyOf(row)); });
}

consteval bool isSubset(const KeyList& keys, const SensorTable& table)
{
    return std::ranges::all_of(keys.rows, [&table](const SensorKey& key) { return table.contains(key); });
}

} // namespace orv
