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

// The reading of a code that is not behind all others, made where there is none.
ThermalDictionary::Reading& ThermalDictionary::among(std::string&& code)
{
    const auto place = std::ranges::lower_bound(entries, code, std::less<>(), &Entry::first);
    if (place->first == code)
        return place->second;
    return entries.emplace(place, std::move(code), Reading())->second;
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
