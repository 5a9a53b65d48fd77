#include "orvctl/watching/Figures.h"

#include "orvctl/views/EntryMember.h"
#include "orvctl/views/LevelNames.h"
#include "orvctl/views/Printable.h"
#include "json/JSONWriter.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <map>
#include <utility>

namespace orv {

namespace {

void addFigure(std::vector<Figure>& figures, std::string_view key, std::string_view title, std::string_view unit,
    const Value& value, double least = 0, double most = 0)
{
    double number = 0;
    if (const auto* real = value.as<double>())
        number = *real;
    else if (const auto* integer = value.as<std::int64_t>())
        number = static_cast<double>(*integer);
    else
        return;
    if (std::isnan(number))
        return;
    figures.push_back({printable(key), printable(title), unit, number, value, least, most});
}

void addThermal(std::vector<Figure>& figures, const Member& sensor, std::string_view type, std::string_view unit)
{
    const auto* entry = sensor.value.as<Dictionary>();
    const auto* value = entry && textMember(*entry, "type") == type ? entry->find("value") : nullptr;
    if (value)
        addFigure(figures, sensor.key, textMember(*entry, "title"), unit, *value, speed(*entry, "minvalue"),
            speed(*entry, "maxvalue"));
}

void addLevels(std::vector<Figure>& figures, const Member& device)
{
    const auto* entry = device.value.as<Dictionary>();
    for (const auto& level : levelNames) {
        if (const auto* value = entry ? entry->find(level.key) : nullptr)
            addFigure(figures, device.key, level.heading, "percent", *value);
    }
}

} // namespace

std::string exactText(const Figure& figure)
{
    if (std::isfinite(figure.value))
        return writeJSON(figure.given, KeyOrder::asListed);
    return figure.value > 0 ? "inf" : "-inf";
}

std::vector<Figure> allFigures(const Dictionary& thermal, const Dictionary& bluetooth)
{
    std::vector<Figure> figures;
    for (const auto& sensor : thermal)
        addThermal(figures, sensor, "temperature", "celsius");
    for (const auto& fan : thermal)
        addThermal(figures, fan, "fans", "rpm");
    for (const auto& device : bluetooth)
        addLevels(figures, device);
    return figures;
}

std::vector<Figure> figuresOf(const Moment& moment)
{
    auto figures = allFigures(moment.thermal, moment.bluetooth);
    if (moment.chosen.empty())
        return figures;
    const auto rankOf = [&](const Figure& figure) {
        return std::ranges::find_if(moment.chosen, [&](const auto& name) { return isNamed(figure, name); });
    };
    // By a map, whose equal keys keep their order: the library's stable sort uses what clang finds deprecated.
    std::multimap<decltype(rankOf(figures.front())), Figure> ranked;
    for (const auto& figure : figures)
        ranked.emplace(rankOf(figure), figure);
    std::vector<Figure> sorted;
    for (auto& [rank, figure] : ranked)
        sorted.push_back(std::move(figure));
    return sorted;
}

bool isNamed(const Member& entry, std::string_view name)
{
    const auto* members = entry.value.as<Dictionary>();
    return entry.key == name || (members && !name.empty() && textMember(*members, "title") == name);
}

bool isNamed(const Figure& figure, std::string_view name)
{
    return figure.key == name || (figure.unit != "percent" && !name.empty() && figure.title == name);
}

} // namespace orv
