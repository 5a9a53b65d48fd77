#include "orvctl/top/StyledLine.h"

#include "orvctl/views/ColumnWidth.h"

#include <algorithm>
#include <utility>

namespace orv {

std::string StyledLine::plainText() const
{
    std::string result;
    for (const auto& part : texts)
        result += part.text;
    return result.substr(0, result.find_last_not_of(' ') + 1);
}

LineWriter& LineWriter::put(Style style, std::string_view text)
{
    const auto shown = drawable(text, signs);
    return put(style, shown, columnCount(shown));
}

LineWriter& LineWriter::put(Style style, std::string_view text, std::size_t width)
{
    width = std::min(width, room);
    add(style, fitted(width, text, signs), width);
    return *this;
}

LineWriter& LineWriter::putRight(Style style, std::string_view text, std::size_t width)
{
    const auto shown = drawable(text, signs);
    const auto needed = std::min(columnCount(shown), width);
    return skip(width - needed).put(style, shown, needed);
}

LineWriter& LineWriter::putSigns(Style style, std::string_view text, std::size_t width)
{
    if (width > room)
        return put(style, text, width);
    add(style, std::string(text), width);
    return *this;
}

void LineWriter::add(Style style, std::string text, std::size_t width)
{
    room -= width;
    if (text.empty())
        return;
    const bool isBlank = text.find_first_not_of(' ') == std::string::npos;
    if (!line.texts.empty() && (line.texts.back().style == style || isBlank))
        line.texts.back().text += text;
    else
        line.texts.push_back({std::move(text), style});
}

} // namespace orv
