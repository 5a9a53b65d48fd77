#include "orvctl/views/NaturalOrder.h"

#include <algorithm>
#include <compare>
#include <cstddef>
#include <tuple>

namespace orv {

namespace {

constexpr std::string_view digits = "0123456789";

std::size_t lengthOfNumber(std::string_view text)
{
    return std::min(text.find_first_not_of(digits), text.size());
}

// As digits, since a number of any length may come.
std::strong_ordering compareNumbers(std::string_view left, std::string_view right)
{
    left.remove_prefix(std::min(left.find_first_not_of('0'), left.size()));
    right.remove_prefix(std::min(right.find_first_not_of('0'), right.size()));
    return std::tuple(left.size(), left) <=> std::tuple(right.size(), right);
}

} // namespace

bool comesNaturallyBefore(std::string_view left, std::string_view right)
{
    auto leftRest = left;
    auto rightRest = right;
    while (!leftRest.empty() && !rightRest.empty()) {
        const auto leftLength = std::max<std::size_t>(1, lengthOfNumber(leftRest));
        const auto rightLength = std::max<std::size_t>(1, lengthOfNumber(rightRest));
        const auto order = lengthOfNumber(leftRest) > 0 && lengthOfNumber(rightRest) > 0
            ? compareNumbers(leftRest.substr(0, leftLength), rightRest.substr(0, rightLength))
            : leftRest.substr(0, 1) <=> rightRest.substr(0, 1);
        if (order != std::strong_ordering::equal)
            return order == std::strong_ordering::less;
        leftRest.remove_prefix(leftLength);
        rightRest.remove_prefix(rightLength);
    }
    return leftRest.empty() == rightRest.empty() ? left < right : leftRest.empty();
}

} // namespace orv
