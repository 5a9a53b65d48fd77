#include "orvctl/views/NaturalOrder.h"

#include <algorithm>
#include <compare>
#include <cstddef>
#include <tuple>

namespace orv {

namespace {

std::size_t lengthOfNumber(std::string_view text)
{
    const auto isDigit = [](char character) { return character >= '0' && character <= '9'; };
    return static_cast<std::size_t>(std::ranges::find_if_not(text, isDigit) - text.begin());
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
        const auto leftLength = lengthOfNumber(leftRest);
        const auto rightLength = lengthOfNumber(rightRest);
        const auto order = leftLength > 0 && rightLength > 0
            ? compareNumbers(leftRest.substr(0, leftLength), rightRest.substr(0, rightLength))
            : leftRest.substr(0, 1) <=> rightRest.substr(0, 1);
        if (order != std::strong_ordering::equal)
            return order == std::strong_ordering::less;
        leftRest.remove_prefix(std::max<std::size_t>(1, leftLength));
        rightRest.remove_prefix(std::max<std::size_t>(1, rightLength));
    }
    return leftRest.empty() == rightRest.empty() ? left < right : leftRest.empty();
}

} // namespace orv
