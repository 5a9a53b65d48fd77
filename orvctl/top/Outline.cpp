#include "orvctl/top/Outline.h"

#include "orvctl/views/NaturalOrder.h"

#include <algorithm>
#include <string_view>

namespace orv {

namespace {

char small(char character)
{
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
}

bool contains(std::string_view text, std::string_view part)
{
    const auto isSame = [](char one, char other) { return small(one) == small(other); };
    return !std::ranges::search(text, part, isSame).empty() || part.empty();
}

bool passes(const TopReading& reading, const std::string& filter)
{
    return contains(reading.title, filter) || contains(reading.key, filter)
        || contains(topGroups[reading.group].heading, filter);
}

bool comesBefore(const TopReading& first, const TopReading& second, Order order)
{
    if (order == Order::value && first.value != second.value)
        return first.value > second.value;
    const auto& one = order == Order::key ? first.key : first.title;
    const auto& other = order == Order::key ? second.key : second.title;
    return one == other ? first.identity < second.identity : comesNaturallyBefore(one, other);
}

std::vector<OutlinedGroup> grouped(const std::vector<TopReading>& readings, const Choice& choice)
{
    std::map<std::size_t, OutlinedGroup> groups;
    for (const auto& reading : readings) {
        if (passes(reading, choice.filter))
            groups[reading.group].readings.push_back(&reading);
    }
    std::vector<OutlinedGroup> result;
    for (auto& [group, entry] : groups) {
        entry.group = group;
        std::ranges::sort(entry.readings,
            [&](const auto* first, const auto* second) { return comesBefore(*first, *second, choice.order); });
        result.push_back(std::move(entry));
    }
    return result;
}

std::size_t linesOf(const std::vector<OutlinedGroup>& groups)
{
    std::size_t lines = groups.size();
    for (const auto& group : groups)
        lines += group.isFolded ? 0 : group.readings.size();
    return lines;
}

/// The largest group that is neither folded nor left to the user.
OutlinedGroup* largest(std::vector<OutlinedGroup>& groups, const Choice& choice)
{
    OutlinedGroup* found = nullptr;
    for (auto& group : groups) {
        const bool isFree = !group.isFolded && !choice.folds.contains(group.group);
        if (isFree && (!found || group.readings.size() > found->readings.size()))
            found = &group;
    }
    return found;
}

} // namespace

std::vector<OutlinedGroup> outline(const std::vector<TopReading>& readings, const Choice& choice, std::size_t height)
{
    auto groups = grouped(readings, choice);
    for (auto& group : groups) {
        const auto chosen = choice.folds.find(group.group);
        group.isFolded = chosen != choice.folds.end() && chosen->second;
    }
    while (linesOf(groups) > height) {
        auto* group = largest(groups, choice);
        if (!group)
            break;
        group->isFolded = true;
    }
    return groups;
}

} // namespace orv
