#pragma once

#include "orvctl/plotting/Axis.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace orv {

/// A line of a picture, as wide as it has columns: of what lies within one column its extremes are kept, so that it
/// takes no more room however many points it has.
class Trace {
public:
    explicit Trace(std::size_t columns);

    /// `position` is from 0 to the number of columns. A joined point continues the line from the one before.
    void add(double position, double value, bool isJoined);

    /// The line as the data of an SVG path within a panel of that height whose left upper corner is at (left, top), to
    /// a tenth of a pixel. A point that nothing is joined to is a dot for round line ends.
    std::string path(const Axis& axis, double left, double top, double height) const;

private:
    struct Column {
        double first = 0;
        double last = 0;
        double least = 0;
        double most = 0;
        double position = 0; // of the first point
        std::size_t points = 0;
        bool isJoined = false; // to the column before that has points
    };

    std::vector<Column> columns;
};

} // namespace orv
