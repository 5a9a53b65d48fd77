#include "orvctl/checking/Limit.h"

#include <cmath>
#include <locale>
#include <sstream>

namespace orv {

namespace {

std::optional<double> parseNumber(const std::string& text)
{
    if (text.empty() || text.find_first_not_of("0123456789.+-eE") != std::string::npos)
        return std::nullopt;
    std::istringstream stream(text);
    stream.imbue(std::locale::classic());
    double number = 0;
    const bool isWhole = (stream >> number) && stream.eof();
    return isWhole && std::isfinite(number) ? std::optional(number) : std::nullopt;
}

} // namespace

// A title may hold the sign, a number does not.
std::optional<Limit> parseLimit(const std::string& text, PluginState state)
{
    const auto sign = text.rfind('=');
    if (sign == std::string::npos || sign == 0)
        return std::nullopt;
    const auto number = parseNumber(text.substr(sign + 1));
    return number ? std::optional(Limit{text.substr(0, sign), *number, state}) : std::nullopt;
}

} // namespace orv
