#include "orvctl/watching/BarItems.h"

#include "orvctl/views/Age.h"
#include "orvctl/watching/Figures.h"

#include <fmt/core.h>

#include <algorithm>
#include <cmath>
#include <string_view>

namespace orv {

namespace {

struct BarUnit {
    std::string_view unit;
    std::string_view symbol;
    std::string_view widest;
};

constexpr BarUnit barUnits[]{
    {"celsius", "°C", "100 °C"},
    {"rpm", "rpm", "9999 rpm"},
    {"percent", "%", "100 %"},
};

bool isLevel(const Figure& figure)
{
    return figure.unit == "percent" && figure.value >= 0 && figure.value <= 100;
}

BarItem barItem(const Figure& figure, bool isNamed)
{
    const auto* unit = std::ranges::find(barUnits, figure.unit, &BarUnit::unit);
    const bool isMainLevel = figure.unit == "percent" && figure.title == "Main";
    const auto name = figure.unit != "percent" ? figure.title
        : isMainLevel                          ? figure.key
                                               : figure.key + " " + figure.title;
    return {figure.key, name, fmt::format("{:.0f} {}", std::round(figure.value) + 0.0, unit->symbol),
        std::string(unit->widest), isNamed};
}

std::vector<BarItem> chosenItems(const std::vector<Figure>& figures)
{
    std::vector<BarItem> items;
    for (const auto& figure : figures)
        items.push_back(barItem(figure, true));
    return items;
}

/// The largest of a unit, or nothing.
const Figure* largest(const std::vector<Figure>& figures, std::string_view unit)
{
    const Figure* found = nullptr;
    for (const auto& figure : figures) {
        if (figure.unit == unit && (!found || figure.value > found->value))
            found = &figure;
    }
    return found;
}

const Figure* lowestLevel(const std::vector<Figure>& figures)
{
    const Figure* found = nullptr;
    for (const auto& figure : figures) {
        if (isLevel(figure) && (!found || figure.value < found->value))
            found = &figure;
    }
    return found;
}

/// Those that a bar can show.
std::vector<Figure> finiteFigures(const Moment& moment)
{
    auto figures = figuresOf(moment);
    std::erase_if(figures, [](const auto& figure) { return !std::isfinite(figure.value); });
    return figures;
}

} // namespace

std::vector<BarItem> barItems(const Moment& moment)
{
    const auto figures = finiteFigures(moment);
    if (!moment.chosen.empty())
        return chosenItems(figures);
    std::vector<BarItem> items;
    if (const auto* sensor = largest(figures, "celsius"))
        items.push_back(barItem(*sensor, true));
    if (const auto* fan = largest(figures, "rpm"))
        items.push_back(barItem(*fan, false));
    if (const auto* level = lowestLevel(figures))
        items.push_back(barItem(*level, false));
    return items;
}

std::string barText(const BarItem& item, const std::string& number)
{
    return item.isNamed ? item.name + " " + number : number;
}

std::string barAge(const Moment& moment)
{
    const auto state = moment.timing ? freshness(*moment.timing) : Freshness::fresh;
    if (state == Freshness::fresh)
        return {};
    return state == Freshness::asleep ? " (asleep)" : fmt::format(" ({} old)", ageText(moment.timing->age));
}

std::optional<std::int64_t> lowestBattery(const Moment& moment)
{
    const auto figures = finiteFigures(moment);
    const auto* level = lowestLevel(figures);
    return level ? std::optional(static_cast<std::int64_t>(level->value)) : std::nullopt;
}

} // namespace orv
