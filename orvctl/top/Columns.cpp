#include "orvctl/top/Columns.h"

#include <algorithm>

namespace orv {

namespace {

constexpr std::size_t valueWidth = 9; // "12000 rpm"
constexpr std::size_t leastTitle = 14;
constexpr std::size_t mostTitle = 40;
constexpr std::size_t leastSparkline = 8;
constexpr std::size_t usualSparkline = 20; // ten minutes
constexpr std::size_t mostSparkline = 40;
constexpr std::size_t leastBar = 6;
constexpr std::size_t mostBar = 24;
constexpr std::size_t leastKey = 4;
constexpr std::size_t mostKey = 9;
constexpr std::size_t extremeWidth = 6;

void widen(std::size_t& column, std::size_t most, std::size_t& room)
{
    if (column == 0 || most <= column)
        return;
    const auto more = std::min(most - column, room);
    column += more;
    room -= more;
}

/// Adds a column with the blank before it when there is room.
void add(std::size_t& column, std::size_t width, std::size_t& room, std::size_t count = 1)
{
    if (room < count * (width + 1))
        return;
    column = width;
    room -= count * (width + 1);
}

} // namespace

// What tells most is added first; then what is there grows.
Columns columnsFor(std::size_t width, std::size_t longestTitle, std::size_t longestKey)
{
    Columns columns;
    const auto needed = indent + leastTitle + 1 + valueWidth;
    columns.value = valueWidth;
    columns.title = width < needed ? width - std::min(width, indent + 1 + valueWidth) : leastTitle;
    auto room = width - std::min(width, needed);
    add(columns.sparkline, leastSparkline, room);
    add(columns.bar, leastBar, room);
    add(columns.key, std::clamp(longestKey, leastKey, mostKey), room);
    add(columns.extreme, extremeWidth, room, 2);
    widen(columns.title, std::clamp(longestTitle, leastTitle, mostTitle), room);
    widen(columns.sparkline, usualSparkline, room);
    widen(columns.bar, mostBar, room);
    widen(columns.sparkline, mostSparkline, room);
    return columns;
}

} // namespace orv
