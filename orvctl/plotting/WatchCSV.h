#pragma once

#include "base/LineReader.h"
#include "orvctl/plotting/TimeAxis.h"
#include "orvctl/watching/Figures.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orv {

/// What `watch --format csv` wrote, read row by row. A row that no newline ends was cut off and is left out; several
/// outputs may follow each other in a file, each with its headings.
class WatchCSV {
public:
    struct Row {
        WallTime at;
        bool follows; // false: so much time has passed since the row before that nothing is known of it
        std::vector<Figure> figures;
    };

    /// Whether a file begins as one.
    static bool isOne(const std::string& path);

    /// Nothing when the file cannot be used; `fault` then is one line.
    static std::optional<WatchCSV> open(const std::string& path, std::string& fault);

    WallTime beginning() const { return earliest; }
    WallTime end() const { return latest; }

    /// The next row; nothing at the end, and when it cannot be used: `fault` then is one line.
    std::optional<Row> next(std::string& fault);

private:
    using Column = std::optional<Figure>; // without a value; nothing for one that no reading has

    WatchCSV(std::string name, LineReader opened);
    std::optional<std::string_view> nextLine();
    void takeHeadings(std::string_view line);
    std::string takeTime(std::string_view line);
    std::string lookThrough();
    std::string takeCells(std::string_view line, std::vector<Figure>& figures) const;
    std::string lineFault(const std::string& why) const;

    std::string path;
    LineReader lines;
    std::vector<Column> columns;
    WallTime earliest = WallTime::max();
    WallTime latest = WallTime::min();
    std::chrono::duration<double> shortestPause = std::chrono::duration<double>::max();
    std::chrono::duration<double> longestPause{};
    std::optional<WallTime> previous;
};

} // namespace orv
