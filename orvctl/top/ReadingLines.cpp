#include "orvctl/top/ReadingLines.h"

#include "orvctl/views/ColumnWidth.h"

#include <fmt/core.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <string>

namespace orv {

namespace {

struct KindRow {
    std::string_view unit;
    int decimals;
    double smallestRange; // that bars and sparklines show, so that noise does not look like weather
    double warmFrom, hotFrom;
    std::string_view most; // what the reading with the highest value is called
};

constexpr double never = HUGE_VAL;

// In the order of ReadingKind.
constexpr std::array<KindRow, 3> kindRows{{
    {"C", 1, 4, 65, 85, "hottest"},
    {"rpm", 0, 200, never, never, "fastest"},
    {"%", 0, 10, never, never, ""},
}};

constexpr double lowLevel = 20;
constexpr double emptyLevel = 10;

ReadingKind kindOf(const TopReading& reading)
{
    return topGroups[reading.group].kind;
}

const KindRow& rowOf(ReadingKind kind)
{
    return kindRows[static_cast<std::size_t>(kind)];
}

/// A number in at most six columns.
std::string number(double value, int decimals)
{
    if (std::isinf(value))
        return value > 0 ? "inf" : "-inf";
    const auto rounded = fmt::format("{:.{}f}", value, decimals);
    const auto text =
        rounded.find_first_not_of("-0.") == std::string::npos ? fmt::format("{:.{}f}", 0.0, decimals) : rounded;
    return text.size() <= 6 ? text : fmt::format("{:.0e}", value);
}

std::string unitOf(ReadingKind kind, const Glyphs& signs)
{
    return (kind == ReadingKind::temperature ? std::string(signs.degrees) : std::string())
        + std::string(rowOf(kind).unit);
}

std::string valueText(const TopReading& reading, const Glyphs& signs)
{
    const auto kind = kindOf(reading);
    return number(reading.value, rowOf(kind).decimals) + ' ' + unitOf(kind, signs);
}

Style styleOf(const TopReading& reading)
{
    const auto& row = rowOf(kindOf(reading));
    if (kindOf(reading) == ReadingKind::level)
        return reading.value < emptyLevel ? Style::hot : reading.value < lowLevel ? Style::warm : Style::cool;
    return reading.value >= row.hotFrom ? Style::hot : reading.value >= row.warmFrom ? Style::warm : Style::cool;
}

struct Range {
    double least;
    double most;
};

// What changes by less lies in the middle.
Range seenRange(const ReadingHistory& seen, const KindRow& row)
{
    const auto missing = std::max(row.smallestRange - (seen.highest - seen.lowest), 0.0);
    return {seen.lowest - missing / 2, seen.highest + missing / 2};
}

// In whole steps, since a line whose scale changes is sent anew.
Range steadyRange(const ReadingHistory& seen, const KindRow& row)
{
    const auto step = row.smallestRange;
    return {std::floor(seen.lowest / step) * step, (std::floor(seen.highest / step) + 1) * step};
}

double partOf(double value, const Range& range)
{
    return (value - range.least) / (range.most - range.least);
}

void putHistory(LineWriter& line, const TopReading& reading, const ReadingHistory& seen, const History& history,
    const Drawing& drawing)
{
    const auto& columns = drawing.columns;
    const auto& row = rowOf(kindOf(reading));
    const auto range = seenRange(seen, row);
    const auto steady = steadyRange(seen, row);
    const auto scale = reading.most > reading.least ? Range{reading.least, reading.most} : range;
    if (columns.bar > 0)
        line.skip(1).putSigns(
            styleOf(reading), bar(columns.bar, partOf(reading.value, scale), drawing.signs), columns.bar);
    if (columns.sparkline > 0)
        line.skip(1).putSigns(Style::plain,
            sparkline(history.columns(reading.identity, columns.sparkline), steady.least, steady.most, drawing.signs),
            columns.sparkline);
    if (columns.extreme == 0 || !seen.hasFinite)
        return;
    for (const auto extreme : {seen.lowest, seen.highest})
        line.skip(1).putRight(Style::plain, number(extreme, row.decimals), columns.extreme);
}

/// Of the readings of a group that are finite.
struct Digest {
    const TopReading* lowest = nullptr;
    const TopReading* highest = nullptr;
    double mean = 0;
};

Digest digestOf(const std::vector<const TopReading*>& readings)
{
    Digest digest;
    double count = 0;
    for (const auto* reading : readings) {
        if (!std::isfinite(reading->value))
            continue;
        if (!digest.lowest || reading->value < digest.lowest->value)
            digest.lowest = reading;
        if (!digest.highest || reading->value > digest.highest->value)
            digest.highest = reading;
        digest.mean += (reading->value - digest.mean) / ++count;
    }
    return digest;
}

std::string summary(const OutlinedGroup& group, const Glyphs& signs)
{
    const auto digest = digestOf(group.readings);
    if (!digest.lowest)
        return {};
    const auto kind = topGroups[group.group].kind;
    const auto unit = unitOf(kind, signs);
    const auto lowest = number(digest.lowest->value, 0);
    if (group.readings.size() == 1)
        return fmt::format("{} {}, {}", lowest, unit, digest.lowest->title);
    const auto highest = number(digest.highest->value, 0);
    auto text =
        lowest == highest ? fmt::format("{} {}", lowest, unit) : fmt::format("{} to {} {}", lowest, highest, unit);
    if (kind == ReadingKind::temperature)
        text += ", mean " + number(digest.mean, 0);
    if (kind == ReadingKind::level)
        return text + ", lowest " + digest.lowest->title;
    return fmt::format("{}, {} {}", text, rowOf(kind).most, digest.highest->title);
}

Style hottestStyle(const OutlinedGroup& group)
{
    auto hottest = Style::plain;
    for (const auto* reading : group.readings)
        hottest = std::max(hottest, styleOf(*reading));
    return hottest == Style::cool ? Style::plain : hottest;
}

} // namespace

LongestTexts longestTexts(const std::vector<TopReading>& readings)
{
    LongestTexts longest;
    for (const auto& reading : readings) {
        longest.title = std::max(longest.title, columnCount(reading.title));
        longest.key = std::max(longest.key, columnCount(reading.key));
    }
    return longest;
}

Drawing drawingFor(std::size_t width, const LongestTexts& longest, const Glyphs& signs)
{
    return {width, columnsFor(width, longest.title, longest.key), signs};
}

StyledLine headingLine(const Drawing& drawing)
{
    const auto& columns = drawing.columns;
    LineWriter line(drawing.width, drawing.signs);
    line.skip(indent).put(Style::faint, "Reading", columns.title);
    if (columns.key > 0)
        line.skip(1).put(Style::faint, "Key", columns.key);
    line.skip(1).putRight(Style::faint, "Now", columns.value);
    if (columns.bar > 0)
        line.skip(1).put(Style::faint, "Range", columns.bar);
    const auto minutes = columns.sparkline * static_cast<std::size_t>(History::columnTime.count()) / 60;
    if (columns.sparkline > 0)
        line.skip(1).put(Style::faint, fmt::format("{} min", minutes), columns.sparkline);
    if (columns.extreme > 0)
        line.skip(1)
            .putRight(Style::faint, "Low", columns.extreme)
            .skip(1)
            .putRight(Style::faint, "High", columns.extreme);
    return line.take();
}

StyledLine readingLine(const TopReading& reading, const History& history, const Drawing& drawing)
{
    const auto& columns = drawing.columns;
    const auto style = styleOf(reading);
    LineWriter line(drawing.width, drawing.signs);
    line.skip(indent).put(Style::plain, reading.title, columns.title);
    if (columns.key > 0)
        line.skip(1).put(Style::faint, reading.key, columns.key);
    line.skip(1).putRight(
        style == Style::cool ? Style::plain : style, valueText(reading, drawing.signs), columns.value);
    if (const auto* seen = history.find(reading.identity))
        putHistory(line, reading, *seen, history, drawing);
    return line.take();
}

StyledLine groupLine(const OutlinedGroup& group, const Drawing& drawing)
{
    LineWriter line(drawing.width, drawing.signs);
    line.put(Style::plain, group.isFolded ? drawing.signs.folded : drawing.signs.unfolded, indent);
    line.put(Style::strong, topGroups[group.group].heading);
    line.put(Style::plain, fmt::format(" {}", group.readings.size()));
    if (group.isFolded)
        line.put(Style::plain, ": ").put(hottestStyle(group), summary(group, drawing.signs), line.columnsLeft());
    return line.take();
}

} // namespace orv
