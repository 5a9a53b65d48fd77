#include "orvctl/plotting/Panel.h"

#include "orvctl/plotting/Markup.h"
#include "orvctl/plotting/StyleSheet.h"
#include "orvctl/views/Text.h"

#include <fmt/core.h>

#include <algorithm>
#include <utility>

namespace orv {

namespace {

constexpr double frameWidth = plotColumns;
constexpr double right = Panel::left + frameWidth;
constexpr double namesLeft = right + 18;
constexpr double nameHeight = 19;
constexpr std::size_t nameColumns = 27;
constexpr double captionHeight = 30;
constexpr double pixelsAStep = 32; // at least

std::vector<Line> highestFirst(std::vector<Line> lines)
{
    std::ranges::sort(lines, [](const Line& one, const Line& other) {
        return std::pair(-one.series->latest, one.number) < std::pair(-other.series->latest, other.number);
    });
    return lines;
}

double heightFor(Quantity quantity, std::size_t lines)
{
    const double least = quantity == Quantity::temperature ? 300 : 130;
    return std::max(least, static_cast<double>(lines) * nameHeight);
}

Axis axisFor(const std::vector<Line>& lines, double height)
{
    const auto quantity = lines.front().series->quantity;
    double least = quantity == Quantity::temperature ? lines.front().series->least : 0;
    double most = quantity == Quantity::batteryLevel ? 100 : lines.front().series->most;
    for (const auto& line : lines) {
        least = std::min(least, line.series->least);
        most = std::max(most, line.series->most);
    }
    return axisAround(least, most, static_cast<int>(std::min(height / pixelsAStep, 10.0)));
}

std::string number(double value)
{
    const auto text = fmt::format("{:.1f}", value);
    return text.ends_with(".0") ? text.substr(0, text.size() - 2) : text;
}

std::string extremes(const Series& series)
{
    const auto least = number(series.least);
    const auto most = number(series.most);
    return least == most ? least : least + " to " + most;
}

// Several sensors may have one title; then its key tells which. A device's level has its kind for a title.
std::string nameOf(const Series& series, const std::vector<Line>& lines)
{
    const auto isAlike = [&](const Line& line) { return line.series->title == series.title; };
    if (series.quantity != Quantity::batteryLevel && std::ranges::count_if(lines, isAlike) == 1)
        return cutTo(nameColumns, series.title);
    return cutTo(nameColumns - std::min(nameColumns - 1, series.key.size() + 1), series.title) + ' ' + series.key;
}

std::string lineClasses(std::size_t number)
{
    return fmt::format("line c{} d{}", number % lineColours, number / lineColours % lineDashes);
}

std::string straight(double x, double y, std::string_view direction, double length)
{
    return fmt::format("M{},{}{}{}", pixels(x), pixels(y), direction, pixels(length));
}

} // namespace

Panel::Panel(const Plot& shown, std::vector<Line> given, const TimeAxis& timeAxis, double top)
    : plot(shown)
    , lines(highestFirst(std::move(given)))
    , time(timeAxis)
    , quantity(rowOf(lines.front().series->quantity))
    , frameTop(top + captionHeight)
    , height(heightFor(quantity.quantity, lines.size()))
    , axis(axisFor(lines, height))
{
}

std::string Panel::svg() const
{
    return textAt(left, frameTop - 10, "caption", quantity.caption) + sleeps() + grid() + marks() + drawn() + names();
}

std::string Panel::sleeps() const
{
    std::string text;
    const auto& columns = plot.sleepingColumns;
    for (auto begin = std::ranges::find(columns, true); begin != columns.end();) {
        const auto end = std::find(begin, columns.end(), false);
        const auto x = left + static_cast<double>(begin - columns.begin());
        const auto breadth = static_cast<double>(end - begin);
        text += fmt::format("<rect x=\"{}\" y=\"{}\" width=\"{}\" height=\"{}\" class=\"sleep\"/>\n", pixels(x),
            pixels(frameTop), pixels(breadth), pixels(height));
        if (breadth > 44)
            text += textAt(x + breadth / 2, frameTop + 16, "label middle", "asleep");
        begin = std::find(end, columns.end(), true);
    }
    return text;
}

std::string Panel::grid() const
{
    std::string data;
    for (const double value : marksOf(axis))
        data += straight(left, y(value), "h", frameWidth);
    for (const auto& mark : time.marks)
        data += straight(left + (mark.at - plot.range.from) / plot.range.length() * frameWidth, frameTop, "v", height);
    return fmt::format("<path class=\"grid\" d=\"{}\"/>\n", data);
}

std::string Panel::marks() const
{
    auto text = fmt::format("<path class=\"frame\" d=\"{}{}\"/>\n", straight(left, frameTop, "v", height),
        straight(left, frameTop + height, "h", frameWidth));
    for (const double value : marksOf(axis))
        text += textAt(left - 8, y(value) + 4, "label end", fmt::format("{:.10g}", value));
    return text;
}

// The first one is the most important one, so it comes last, over the others.
std::string Panel::drawn() const
{
    std::string text;
    for (auto line = lines.rbegin(); line != lines.rend(); ++line) {
        const auto& series = *line->series;
        text += fmt::format("<g><title>{} {}: {} {}</title><path class=\"{}\" d=\"{}\"/></g>\n", escaped(series.title),
            escaped(series.key), extremes(series), quantity.symbol, lineClasses(line->number),
            series.trace.path(axis, left, frameTop, height));
    }
    return text;
}

std::string Panel::names() const
{
    std::string text;
    double place = frameTop + 12;
    for (const auto& line : lines) {
        text += name(line, place);
        place += nameHeight;
    }
    return text;
}

std::string Panel::name(const Line& line, double baseline) const
{
    return fmt::format(
               "<path class=\"{}\" d=\"{}\"/>\n", lineClasses(line.number), straight(namesLeft, baseline - 4, "h", 18))
        + textAt(namesLeft + 26, baseline, "name", nameOf(*line.series, lines))
        + textAt(width - 12, baseline, "label end", extremes(*line.series));
}

} // namespace orv
