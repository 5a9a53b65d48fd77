#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace orv {

/// Finds where the first JSON object of a text ends, given piece by piece and without reading what it holds.
class ObjectEnd {
public:
    /// What follows the object in this piece; nothing before its end, and never when the text does not begin with one.
    std::optional<std::string_view> find(std::string_view piece);

private:
    std::size_t depth = 0;
    bool hasBegun = false;
    bool isOther = false; // begins with something else
    bool isInText = false;
    bool isEscaped = false;
};

} // namespace orv
