#include "readings/Readings.h"

#include <algorithm>
#include <functional>
#include <iterator>

namespace orv {

ThermalDictionary::ThermalDictionary(std::initializer_list<Entry> listed)
{
    for (const auto& [code, reading] : listed)
        insert_or_assign(std::string(code), Reading(reading));
}

void ThermalDictionary::insert_or_assign(std::string&& code, Reading&& reading)
{
    if (entries.empty() || entries.back().first < code) {
        entries.emplace_back(std::move(code), std::move(reading));
        return;
    }
    const auto place = std::ranges::lower_bound(entries, code, std::less<>(), &Entry::first);
    if (place->first == code)
        place->second = std::move(reading);
    else
        entries.emplace(place, std::move(code), std::move(reading));
}

void ThermalDictionary::merge(ThermalDictionary& other)
{
    std::vector<Entry> both;
    both.reserve(entries.size() + other.entries.size());
    // Of equal codes that of the first range comes first, and so is the one that stays.
    std::ranges::merge(std::make_move_iterator(entries.begin()), std::make_move_iterator(entries.end()),
        std::make_move_iterator(other.entries.begin()), std::make_move_iterator(other.entries.end()),
        std::back_inserter(both), std::less<>(), &Entry::first, &Entry::first);
    const auto repeated = std::ranges::unique(both, std::equal_to<>(), &Entry::first);
    both.erase(repeated.begin(), repeated.end());
    entries = std::move(both);
    other.entries.clear();
}

} // namespace orv
