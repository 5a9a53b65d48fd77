#include "orvctl/top/Glyphs.h"

#include "orvctl/views/ColumnWidth.h"
#include "orvctl/views/Text.h"
#include "readings/Text.h"

#include <algorithm>
#include <cmath>

namespace orv {

namespace {

constexpr Glyphs unicode{
    false, "▸", "▾", "°", "…", "█", " ", {"▏", "▎", "▍", "▌", "▋", "▊", "▉"}, {"▁", "▂", "▃", "▄", "▅", "▆", "▇", "█"}};
constexpr Glyphs ascii{true, "+", "-", "", "~", "#", ".", {}, {"_", ".", "-", "~", "=", "+", "*", "#"}};

// From 0 to 1, also for a value that is infinite or a range that is empty.
double part(double value, double least, double most)
{
    if (!(most > least))
        return 0;
    return std::clamp((value - least) / (most - least), 0.0, 1.0);
}

} // namespace

const Glyphs& glyphs(bool isASCII)
{
    return isASCII ? ascii : unicode;
}

std::string drawable(std::string_view text, const Glyphs& signs)
{
    if (!signs.isASCII)
        return std::string(text);
    std::string result;
    while (!text.empty()) {
        const auto length = decodeCharacter(text).length;
        const bool isCombining = columnCount(text.substr(0, length)) == 0;
        if (!isCombining)
            result += length == 1 ? text.substr(0, 1) : std::string_view("?");
        text.remove_prefix(length);
    }
    return result;
}

std::string fitted(std::size_t width, std::string_view text, const Glyphs& signs)
{
    if (!signs.isASCII)
        return width == 0 ? std::string() : padded(width, text);
    auto result = drawable(text, signs);
    const bool isCut = result.size() > width;
    result.resize(width, ' ');
    if (isCut && width > 0)
        result.replace(width - 1, 1, signs.cut);
    return result;
}

std::string bar(std::size_t width, double filled, const Glyphs& signs)
{
    const bool hasParts = !signs.barParts[0].empty();
    const auto steps = hasParts ? signs.barParts.size() + 1 : 1;
    const auto reached =
        static_cast<std::size_t>(std::lround(std::clamp(filled, 0.0, 1.0) * static_cast<double>(width * steps)));
    std::string result;
    for (std::size_t column = 0; column < width; ++column) {
        const auto left = reached - std::min(reached, column * steps);
        const bool isPart = left > 0 && left < steps;
        result += isPart ? signs.barParts[left - 1] : left > 0 ? signs.barFull : signs.barRest;
    }
    return result;
}

std::string sparkline(const std::vector<float>& values, double least, double most, const Glyphs& signs)
{
    const auto highest = static_cast<double>(signs.heights.size() - 1);
    std::string result;
    for (const auto value : values) {
        const bool isMissing = std::isnan(value);
        const auto height = isMissing
            ? 0
            : static_cast<std::size_t>(std::lround(part(static_cast<double>(value), least, most) * highest));
        result += isMissing ? std::string_view(" ") : signs.heights[height];
    }
    return result;
}

} // namespace orv
