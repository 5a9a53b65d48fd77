#pragma once

#include "orvctl/plotting/Series.h"
#include "orvctl/plotting/TimeAxis.h"
#include "orvctl/watching/Figures.h"

#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace orv {

/// How many pixels a plot's panels are wide: what lies within one of them is drawn as one.
inline constexpr std::size_t plotColumns = 720;

/// What a picture shows: readings over a time, reduced to its columns as they come in.
class Plot {
public:
    /// `chosen`: keys and titles of what is to be shown; empty for everything.
    Plot(TimeRange range, std::optional<WallTime> beginning, std::vector<std::string> chosen);

    /// All that was there at a time; what was there just before and is not, or is not a plausible number, ends its
    /// line. Times outside the range are left out.
    void add(double at, const std::vector<Figure>& figures);
    /// Nothing is known of the time from the last readings on to the next: all lines end.
    void breakOff() { ++moment; }
    void addSleep(TimeRange sleep);

    /// Of the chosen names those that fitted nothing.
    const std::set<std::string>& unknown() const { return unknownNames; }

    const TimeRange range;
    const std::optional<WallTime> beginning; // the time of day at 0
    const std::vector<std::string> chosen;
    std::vector<Series> series; // of a choice in its order, otherwise in that of their appearance
    std::vector<bool> sleepingColumns;

private:
    struct Followed {
        std::size_t index; // in `series`
        std::size_t moment; // at which it was last there
    };

    bool isChosen(const Figure& figure);
    void addPoint(double at, const Figure& figure, Quantity quantity);
    double columnAt(double at) const { return (at - range.from) / range.length() * plotColumns; }

    std::map<std::string, Followed, std::less<>> followed; // by unit, key and title
    std::set<std::string> unknownNames;
    std::size_t moment = 0;
};

/// What is drawn, in order: all of a choice; otherwise 12 at most, the hottest temperature of each group and then the
/// fans, or battery levels where there is neither.
std::vector<const Series*> drawnSeries(const Plot& plot);

} // namespace orv
