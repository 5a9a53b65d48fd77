#include "orvctl/top/Page.h"

#include "orvctl/top/Keys.h"
#include "orvctl/views/ColumnWidth.h"
#include "orvctl/views/Printable.h"
#include "readings/Text.h"

#include <fmt/core.h>

#include <algorithm>

namespace orv {

namespace {

/// How many bytes of a text stand in one line: up to the last blank that does, if there is one.
std::size_t lineLength(std::string_view text, std::size_t width)
{
    std::size_t columns = 0;
    std::size_t lastBlank = 0;
    bool hasWord = false;
    for (std::size_t at = 0; at < text.size();) {
        const auto length = decodeCharacter(text.substr(at)).length;
        columns += columnCount(text.substr(at, length));
        if (columns > width)
            return text[at] == ' ' && hasWord ? at : lastBlank > 0 ? lastBlank : std::max<std::size_t>(at, length);
        if (text[at] == ' ' && hasWord)
            lastBlank = at;
        hasWord = hasWord || text[at] != ' ';
        at += length;
    }
    return text.size();
}

void wrapLine(std::string_view line, std::size_t width, std::vector<std::string>& result)
{
    const auto text = printable(line);
    const auto blanks = std::min(text.find_first_not_of(' '), text.size());
    const std::string continued(std::min(blanks + 2, width / 2), ' ');
    std::string rest = text;
    for (;;) {
        const auto length = lineLength(rest, std::max<std::size_t>(width, 1));
        result.push_back(rest.substr(0, length));
        const auto next = rest.find_first_not_of(' ', length);
        if (next == std::string::npos)
            return;
        rest.replace(0, next, continued);
    }
}

} // namespace

Page helpPage(bool isRecording)
{
    std::string text;
    for (const auto& row : keyRows()) {
        if (!row.names.empty() && (isRecording || !row.isOfRecordings))
            text += fmt::format("  {:<17}{}\n", row.names, row.what);
    }
    text += "\nA bar lies within what was seen since the start; a fan's between its lowest and its highest speed, a "
            "battery's between 0 and 100 %. A column of the small graph is the highest value of half a minute.\n";
    return {"Keys", text};
}

std::vector<std::string> wrapped(std::string_view text, std::size_t width)
{
    std::vector<std::string> lines;
    while (!text.empty()) {
        const auto end = std::min(text.find('\n'), text.size());
        wrapLine(text.substr(0, end), width, lines);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return lines;
}

std::vector<StyledLine> pageLines(Page& page, std::size_t width, std::size_t height, const Glyphs& signs)
{
    const auto texts = wrapped(page.text, width);
    page.firstLine = std::min(page.firstLine, texts.size() - std::min(texts.size(), height));
    std::vector<StyledLine> lines;
    for (auto at = page.firstLine; at < texts.size() && lines.size() < height; ++at)
        lines.push_back(LineWriter(width, signs).put(Style::plain, texts[at]).take());
    return lines;
}

} // namespace orv
