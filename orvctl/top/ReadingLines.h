#pragma once

#include "orvctl/top/Columns.h"
#include "orvctl/top/History.h"
#include "orvctl/top/Outline.h"
#include "orvctl/top/StyledLine.h"

#include <cstddef>
#include <vector>

namespace orv {

/// What lines are drawn with.
struct Drawing {
    std::size_t width = 0;
    Columns columns;
    const Glyphs& signs;
};

/// The columns that the longest title and the longest key take.
struct LongestTexts {
    std::size_t title = 0;
    std::size_t key = 0;

    bool operator==(const LongestTexts&) const = default;
};

LongestTexts longestTexts(const std::vector<TopReading>& readings);

Drawing drawingFor(std::size_t width, const LongestTexts& longest, const Glyphs& signs);

/// The names of the columns.
StyledLine headingLine(const Drawing& drawing);

/// A reading with its value, where that lies, what was seen of it lately and its extremes.
StyledLine readingLine(const TopReading& reading, const History& history, const Drawing& drawing);

/// A group's heading; of a folded one with what its readings are: "CPU 24: 41 to 67 °C, mean 52, hottest GPU 2".
StyledLine groupLine(const OutlinedGroup& group, const Drawing& drawing);

} // namespace orv
