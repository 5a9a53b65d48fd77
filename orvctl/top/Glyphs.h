#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace orv {

/// The signs that things are drawn with; each takes one column.
struct Glyphs {
    bool isASCII;
    std::string_view folded;
    std::string_view unfolded;
    std::string_view degrees;
    std::string_view cut; // where a text was cut off
    std::string_view barFull;
    std::string_view barRest;
    std::array<std::string_view, 7> barParts; // a column that is filled by eighths; empty: none is
    std::array<std::string_view, 8> heights;
};

const Glyphs& glyphs(bool isASCII);

/// A text for a terminal that has these signs, filled or cut to a width.
std::string fitted(std::size_t width, std::string_view text, const Glyphs& signs);

/// A text in the characters that there are.
std::string drawable(std::string_view text, const Glyphs& signs);

/// A bar of a width, filled to a part of it from 0 to 1.
std::string bar(std::size_t width, double part, const Glyphs& signs);

/// Values as heights between two limits; a blank for what is not a number.
std::string sparkline(const std::vector<float>& values, double least, double most, const Glyphs& signs);

} // namespace orv
