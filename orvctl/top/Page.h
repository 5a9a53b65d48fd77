#pragma once

#include "orvctl/top/StyledLine.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace orv {

/// A text that covers the readings for a while.
struct Page {
    std::string title;
    std::string text; // lines
    std::size_t firstLine = 0;
};

/// What the keys do.
Page helpPage(bool isRecording);

/// The lines of a text, each broken at blanks where it is wider than `width` and then continued further right.
std::vector<std::string> wrapped(std::string_view text, std::size_t width);

/// The page's lines from its first one on; that is moved back when the page would end above the last line.
std::vector<StyledLine> pageLines(Page& page, std::size_t width, std::size_t height, const Glyphs& signs);

} // namespace orv
