#pragma once

#include "orvctl/top/Glyphs.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace orv {

enum class Style : std::uint8_t { plain, faint, strong, cool, warm, hot, alarm };

/// Characters of one style that follow each other.
struct StyledText {
    std::string text;
    Style style = Style::plain;

    bool operator==(const StyledText&) const = default;
};

/// A line of the screen from its first column on. Behind its end it is blank.
struct StyledLine {
    std::vector<StyledText> texts;
    bool isSelected = false;

    bool operator==(const StyledLine&) const = default;

    /// What it shows, without styles.
    std::string plainText() const;
};

/// Writes a line from left to right, and never beyond its width.
class LineWriter {
public:
    LineWriter(std::size_t lineWidth, const Glyphs& lineSigns)
        : room(lineWidth)
        , signs(lineSigns)
    {
    }

    /// As it is, or cut where the line ends.
    LineWriter& put(Style style, std::string_view text);
    /// In a column of its own: filled up or cut.
    LineWriter& put(Style style, std::string_view text, std::size_t width);
    /// The same, at the right side of the column.
    LineWriter& putRight(Style style, std::string_view text, std::size_t width);
    /// Signs that take a column each.
    LineWriter& putSigns(Style style, std::string_view text, std::size_t width);
    LineWriter& skip(std::size_t width) { return put(Style::plain, "", width); }

    std::size_t columnsLeft() const { return room; }
    StyledLine take() { return std::move(line); }

private:
    void add(Style style, std::string text, std::size_t width);

    std::size_t room;
    const Glyphs& signs;
    StyledLine line;
};

} // namespace orv
