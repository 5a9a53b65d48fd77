#pragma once

#include "orvctl/plotting/Plot.h"

#include <string>
#include <vector>

namespace orv {

/// A series with the number that decides its colour.
struct Line {
    const Series* series;
    std::size_t number;
};

/// The part of a plot that shows one quantity: its frame, axis and lines, and their names on the right.
class Panel {
public:
    /// `top` is where its caption begins.
    Panel(const Plot& plot, std::vector<Line> lines, const TimeAxis& time, double top);

    std::string svg() const;
    /// Where it ends, in pixels from the top.
    double bottom() const { return frameTop + height; }

    static constexpr double left = 64; // of all frames
    static constexpr double width = 1090; // of the whole picture, names included

private:
    std::string sleeps() const;
    std::string grid() const;
    std::string marks() const;
    std::string drawn() const;
    std::string names() const;
    std::string name(const Line& line, double y) const;
    double y(double value) const { return frameTop + height * (1 - axis.place(value)); }

    const Plot& plot;
    const std::vector<Line> lines; // the one that is highest at the end first
    const TimeAxis& time;
    const QuantityRow& quantity;
    const double frameTop;
    const double height;
    const Axis axis;
};

} // namespace orv
