#include "readings/Value.h"

#include <algorithm>
#include <numeric>
#include <tuple>

namespace orv {

namespace {

constexpr std::size_t fewMembers = 16;

bool everyKeyDiffers(const std::vector<Member>& few)
{
    for (auto member = few.begin(); member != few.end(); ++member) {
        if (std::any_of(few.begin(), member, [&](const Member& earlier) { return earlier.key == member->key; }))
            return false;
    }
    return true;
}

// Sorting positions keeps a hostile source with a million members from costing a million searches.
std::vector<Member> firstOfEachKey(std::vector<Member> listed)
{
    if (listed.size() <= fewMembers && everyKeyDiffers(listed))
        return listed;
    std::vector<std::size_t> order(listed.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::ranges::sort(order, [&](auto a, auto b) { return std::tie(listed[a].key, a) < std::tie(listed[b].key, b); });
    const auto isRepeated = [&](auto a, auto b) { return listed[a].key == listed[b].key; };
    if (std::ranges::adjacent_find(order, isRepeated) == order.end())
        return listed;
    const auto repeated = std::ranges::unique(order, isRepeated);
    order.erase(repeated.begin(), repeated.end());
    std::ranges::sort(order);
    std::vector<Member> kept;
    kept.reserve(order.size());
    for (const auto position : order)
        kept.push_back(std::move(listed[position]));
    return kept;
}

std::vector<const Member*> byKey(const std::vector<Member>& members)
{
    std::vector<const Member*> sorted;
    sorted.reserve(members.size());
    for (const auto& member : members)
        sorted.push_back(&member);
    std::ranges::sort(sorted, {}, &Member::key);
    return sorted;
}

} // namespace

Dictionary::Dictionary() = default;
Dictionary::Dictionary(const Dictionary&) = default;
Dictionary::Dictionary(Dictionary&&) noexcept = default;
Dictionary& Dictionary::operator=(const Dictionary&) = default;
Dictionary& Dictionary::operator=(Dictionary&&) noexcept = default;
Dictionary::~Dictionary() = default;

Dictionary::Dictionary(std::vector<Member> listed)
    : members(firstOfEachKey(std::move(listed)))
{
}

const Value* Dictionary::find(std::string_view key) const
{
    const auto found = std::ranges::find(members, key, &Member::key);
    return found == members.end() ? nullptr : &found->value;
}

void Dictionary::set(std::string key, Value value)
{
    const auto found = std::ranges::find(members, key, &Member::key);
    if (found != members.end()) {
        found->value = std::move(value);
        return;
    }
    members.push_back({std::move(key), std::move(value)});
}

bool Dictionary::empty() const
{
    return members.empty();
}

std::size_t Dictionary::size() const
{
    return members.size();
}

std::vector<Member>::const_iterator Dictionary::begin() const
{
    return members.begin();
}

std::vector<Member>::const_iterator Dictionary::end() const
{
    return members.end();
}

bool Dictionary::operator==(const Dictionary& other) const
{
    const auto sameMember = [](const Member* left, const Member* right) { return *left == *right; };
    return size() == other.size() && std::ranges::equal(byKey(members), byKey(other.members), sameMember);
}

} // namespace orv
