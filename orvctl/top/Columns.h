#pragma once

#include <cstddef>

namespace orv {

/// How wide the columns of a row are; 0 for one that is not shown. Between two stands a blank.
struct Columns {
    std::size_t title = 0;
    std::size_t key = 0;
    std::size_t value = 0;
    std::size_t bar = 0;
    std::size_t sparkline = 0;
    std::size_t extreme = 0; // each of lowest and highest

    bool operator==(const Columns&) const = default;
};

/// What a row begins with, before the title.
inline constexpr std::size_t indent = 2;

/// Divides a line's width among the columns of readings whose longest title and key are so wide.
Columns columnsFor(std::size_t width, std::size_t longestTitle, std::size_t longestKey);

} // namespace orv
