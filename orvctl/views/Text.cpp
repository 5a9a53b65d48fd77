#include "orvctl/views/Text.h"

#include "orvctl/views/ColumnWidth.h"
#include "readings/Text.h"

#include <fmt/core.h>

#include <algorithm>
#include <utility>

namespace orv {

std::string cutTo(std::size_t width, std::string_view text)
{
    if (columnCount(text) <= width)
        return std::string(text);
    std::size_t bytes = 0;
    for (std::size_t columns = 0;;) {
        const auto length = decodeCharacter(text.substr(bytes)).length;
        columns += columnCount(text.substr(bytes, length));
        if (columns >= width) // the last one is the ellipsis's
            return std::string(text.substr(0, bytes)) + "…";
        bytes += length;
    }
}

std::string padded(std::size_t width, std::string_view text)
{
    auto result = cutTo(width, text);
    result.append(width - columnCount(result), ' ');
    return result;
}

std::string row(std::string_view text)
{
    text = text.substr(0, text.find_last_not_of(' ') + 1);
    return cutTo(pageWidth, text) + '\n';
}

std::string heading(std::string_view text, Colour colour)
{
    return colour == Colour::on ? fmt::format("\x1b[1m{}\x1b[0m\n", text) : fmt::format("{}\n", text);
}

std::string paragraph(std::size_t indent, std::string_view text)
{
    std::string result;
    std::string line(indent, ' ');
    std::size_t width = indent;
    while (!text.empty()) {
        const auto word = text.substr(0, text.find(' '));
        text.remove_prefix(std::min(text.size(), word.size() + 1));
        const auto length = columnCount(word);
        if (width > indent && width + 1 + length > pageWidth) {
            result += line + '\n';
            line.assign(indent, ' ');
            width = indent;
        }
        if (width > indent) {
            line += ' ';
            ++width;
        }
        line += word;
        width += length;
    }
    return result + line + '\n';
}

std::string columns(std::size_t indent, const std::vector<std::string>& cells)
{
    constexpr std::size_t between = 2;
    std::size_t width = 1;
    for (const auto& cell : cells)
        width = std::max(width, columnCount(cell));
    const auto count = std::max<std::size_t>((pageWidth - indent + between) / (width + between), 1);
    std::string result;
    std::string line;
    for (std::size_t place = 0; place < cells.size(); ++place) {
        line += std::string(place % count == 0 ? indent : between, ' ') + padded(width, cells[place]);
        if (place % count == count - 1 || place + 1 == cells.size())
            result += row(std::exchange(line, {}));
    }
    return result;
}

} // namespace orv
