#include "orvctl/plotting/Plot.h"

#include "orvctl/views/NaturalOrder.h"
#include "thermal/SensorGroup.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace orv {

namespace {

constexpr std::size_t mostWithoutChoice = 12;

// Beyond lies what no sensor means, and what an axis cannot count.
constexpr double largestValue = 1e9;

std::size_t rankOf(const Series& series, const std::vector<std::string>& chosen)
{
    const Figure figure{series.key, series.title, rowOf(series.quantity).unit, 0, {}};
    const auto named = std::ranges::find_if(chosen, [&](const auto& name) { return isNamed(figure, name); });
    return static_cast<std::size_t>(named - chosen.begin());
}

std::vector<const Series*> hottestOfGroups(const Plot& plot)
{
    std::map<SensorGroup, const Series*> hottest;
    for (const auto& series : plot.series) {
        if (series.quantity != Quantity::temperature)
            continue;
        auto& place = hottest[groupOf(series.title)];
        if (!place || series.most > place->most)
            place = &series;
    }
    std::vector<const Series*> result;
    for (const auto& [group, series] : hottest)
        result.push_back(series);
    return result;
}

std::vector<const Series*> ofQuantity(const Plot& plot, Quantity quantity)
{
    std::vector<const Series*> result;
    for (const auto& series : plot.series) {
        if (series.quantity == quantity)
            result.push_back(&series);
    }
    std::ranges::sort(
        result, comesNaturallyBefore, [](const Series* series) { return series->title + ' ' + series->key; });
    return result;
}

std::vector<const Series*> chosenSeries(const Plot& plot)
{
    std::multimap<std::size_t, const Series*> ranked;
    for (const auto& series : plot.series)
        ranked.emplace(rankOf(series, plot.chosen), &series);
    std::vector<const Series*> result;
    for (const auto& [rank, series] : ranked)
        result.push_back(series);
    return result;
}

} // namespace

Plot::Plot(TimeRange shown, std::optional<WallTime> begins, std::vector<std::string> names)
    : range(shown)
    , beginning(begins)
    , chosen(std::move(names))
    , sleepingColumns(plotColumns)
    , unknownNames(chosen.begin(), chosen.end())
{
}

void Plot::add(double at, const std::vector<Figure>& figures)
{
    ++moment;
    for (const auto& figure : figures) {
        const auto quantity = quantityOf(figure.unit);
        const bool isWanted = quantity && isChosen(figure);
        if (isWanted && at >= range.from && at <= range.to && std::abs(figure.value) <= largestValue)
            addPoint(at, figure, *quantity);
    }
}

void Plot::addSleep(TimeRange sleep)
{
    const double from = columnAt(std::max(sleep.from, range.from));
    const double to = columnAt(std::min(sleep.to, range.to));
    if (from >= to)
        return;
    const auto last = std::min(static_cast<std::size_t>(std::ceil(to)), plotColumns);
    for (auto column = static_cast<std::size_t>(from); column < last; ++column)
        sleepingColumns[column] = true;
}

bool Plot::isChosen(const Figure& figure)
{
    const auto isMeant = [&](const std::string& name) {
        return isNamed(figure, name) && (unknownNames.erase(name), true);
    };
    return chosen.empty() || std::ranges::count_if(chosen, isMeant) > 0;
}

void Plot::addPoint(double at, const Figure& figure, Quantity quantity)
{
    const auto name = std::string(figure.unit) + '\n' + figure.key + '\n' + figure.title;
    const auto [place, isNew] = followed.try_emplace(name, Followed{series.size(), 0});
    if (isNew)
        series.push_back({figure.key, figure.title, quantity, Trace(plotColumns), figure.value, figure.value});
    auto& [index, lastMoment] = place->second;
    auto& shown = series[index];
    shown.trace.add(columnAt(at), figure.value, !isNew && lastMoment + 1 == moment);
    lastMoment = moment;
    shown.least = std::min(shown.least, figure.value);
    shown.most = std::max(shown.most, figure.value);
    shown.latest = figure.value;
}

std::vector<const Series*> drawnSeries(const Plot& plot)
{
    if (!plot.chosen.empty())
        return chosenSeries(plot);
    auto drawn = hottestOfGroups(plot);
    for (const auto* fan : ofQuantity(plot, Quantity::fanSpeed))
        drawn.push_back(fan);
    if (drawn.empty())
        drawn = ofQuantity(plot, Quantity::batteryLevel);
    drawn.resize(std::min(drawn.size(), mostWithoutChoice));
    return drawn;
}

} // namespace orv
