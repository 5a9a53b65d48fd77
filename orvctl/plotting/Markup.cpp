#include "orvctl/plotting/Markup.h"

#include "orvctl/views/Printable.h"
#include "readings/Text.h"

#include <fmt/core.h>

#include <cmath>

namespace orv {

std::string escaped(std::string_view text)
{
    std::string result;
    for (const char character : textWithoutNoncharacters(printable(text))) {
        if (character == '&')
            result += "&amp;";
        else if (character == '<')
            result += "&lt;";
        else if (character == '>')
            result += "&gt;";
        else if (character == '"')
            result += "&quot;";
        else
            result += character;
    }
    return result;
}

std::string textAt(double x, double y, std::string_view classes, std::string_view text)
{
    return fmt::format(
        "<text x=\"{}\" y=\"{}\" class=\"{}\">{}</text>\n", pixels(x), pixels(y), classes, escaped(text));
}

std::string pixels(double coordinate)
{
    return fmt::format("{}", std::round(coordinate * 10) / 10);
}

} // namespace orv
