#include "orvctl/commands/Duration.h"

#include <array>
#include <locale>
#include <sstream>
#include <utility>

namespace orv {

namespace {

constexpr double shortest = 0.1;
constexpr double longest = 1e9;
constexpr std::array<std::pair<char, double>, 4> units{{{'s', 1}, {'m', 60}, {'h', 3600}, {'d', 86400}}};

} // namespace

std::optional<double> parseDuration(const std::string& text)
{
    if (text.find_first_not_of("0123456789.smhd") != std::string::npos)
        return std::nullopt;
    auto number = text;
    double unit = 1;
    for (const auto& [letter, seconds] : units) {
        if (!text.ends_with(letter))
            continue;
        unit = seconds;
        number.pop_back();
    }
    std::istringstream stream(number);
    stream.imbue(std::locale::classic());
    double seconds = 0;
    if (!(stream >> seconds) || !stream.eof())
        return std::nullopt;
    seconds *= unit;
    return seconds >= shortest && seconds <= longest ? std::optional(seconds) : std::nullopt;
}

} // namespace orv
