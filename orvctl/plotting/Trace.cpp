#include "orvctl/plotting/Trace.h"

#include <fmt/core.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace orv {

namespace {

/// In tenths of a pixel.
struct Point {
    long x;
    long y;
};

std::string inPixels(long tenths)
{
    const auto whole = std::abs(tenths) / 10;
    const auto rest = std::abs(tenths) % 10;
    const auto* sign = tenths < 0 ? "-" : "";
    return rest == 0 ? fmt::format("{}{}", sign, whole) : fmt::format("{}{}.{}", sign, whole, rest);
}

/// Writes lines as SVG does; what goes straight on is one piece.
class PathWriter {
public:
    void draw(Point point, bool isJoined)
    {
        if (!isJoined || text.empty())
            move(point);
        else if (point.y == at.y)
            at = point;
        else
            drawAcross(point);
    }

    std::string take()
    {
        finishRun();
        return std::move(text);
    }

private:
    void move(Point point)
    {
        finishRun();
        text += 'M' + inPixels(point.x) + ',' + inPixels(point.y);
        written = at = point;
        isDot = true;
    }

    void drawAcross(Point point)
    {
        flush();
        text += point.x == written.x ? 'v' + inPixels(point.y - written.y)
                                     : 'l' + inPixels(point.x - written.x) + ',' + inPixels(point.y - written.y);
        written = at = point;
        isDot = false;
    }

    void flush()
    {
        if (at.x == written.x)
            return;
        text += 'h' + inPixels(at.x - written.x);
        written = at;
        isDot = false;
    }

    void finishRun()
    {
        flush();
        if (isDot && !text.empty())
            text += "h0";
    }

    std::string text;
    Point written{};
    Point at{}; // as far as the line goes at the same height
    bool isDot = false;
};

} // namespace

Trace::Trace(std::size_t count)
    : columns(count)
{
}

void Trace::add(double position, double value, bool isJoined)
{
    const auto index = static_cast<std::size_t>(std::clamp(position, 0.0, static_cast<double>(columns.size() - 1)));
    auto& column = columns[index];
    if (column.points++ == 0) {
        column = {value, value, value, value, position, 1, isJoined};
        return;
    }
    column.last = value;
    column.least = std::min(column.least, value);
    column.most = std::max(column.most, value);
}

std::string Trace::path(const Axis& axis, double left, double top, double height) const
{
    const auto pointAt = [&](double position, double value) {
        return Point{std::lround(10 * (left + position)), std::lround(10 * (top + height * (1 - axis.place(value))))};
    };
    PathWriter writer;
    for (std::size_t index = 0; index < columns.size(); ++index) {
        const auto& column = columns[index];
        if (column.points == 0)
            continue;
        const double middle = static_cast<double>(index) + 0.5;
        const bool falls = column.last < column.first;
        writer.draw(pointAt(column.points == 1 ? column.position : middle, falls ? column.most : column.least),
            column.isJoined);
        if (column.points > 1)
            writer.draw(pointAt(middle, falls ? column.least : column.most), true);
    }
    return writer.take();
}

} // namespace orv
