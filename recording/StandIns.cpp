#include "recording/StandIns.h"

#include "bluetooth/SystemProfilerReport.h"

#include <algorithm>
#include <array>

namespace orv {

namespace {

constexpr std::size_t addressLength = 17; // six groups of two digits and what separates them

// Eleven digits before the colons are room for more devices than a file can name.
std::string inTheFormOfAnAddress(std::size_t number)
{
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text(addressLength, '-');
    for (std::size_t place = text.size(); place-- > 0;) {
        if (place % 3 == 2)
            continue;
        text[place] = digits[number % digits.size()];
        number /= digits.size();
    }
    return text;
}

} // namespace

std::string StandIns::deviceKey(std::string_view key)
{
    return inTheFormOfAnAddress(numberOf(deviceKeys, key));
}

std::string StandIns::address(std::string_view address)
{
    auto text = deviceKey(orv::deviceKey(std::string(address)));
    std::ranges::replace(text, '-', ':');
    return text;
}

std::size_t StandIns::count() const
{
    return deviceKeys.size() + names.size() + keys.size() + texts.size();
}

std::size_t StandIns::numberOf(Numbers& numbers, std::string_view text)
{
    const auto found = numbers.find(text);
    return found != numbers.end() ? found->second : numbers.emplace(text, numbers.size() + 1).first->second;
}

std::string StandIns::numbered(Numbers& numbers, const char* word, std::string_view text)
{
    return word + std::to_string(numberOf(numbers, text));
}

std::string StandIns::addressOr(Numbers& numbers, const char* word, std::string_view text)
{
    return isDeviceAddress(text) ? deviceKey(text) : numbered(numbers, word, text);
}

} // namespace orv
