#include "orvctl/plotting/WatchCSV.h"

#include "base/RegularFile.h"
#include "orvctl/plotting/CSVFields.h"
#include "orvctl/plotting/Series.h"
#include "orvctl/watching/WallTime.h"

#include <fmt/core.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <limits>
#include <locale>
#include <sstream>
#include <utility>

namespace orv {

namespace {

constexpr std::size_t longestLine = 1u << 20;
constexpr std::size_t mostColumns = 2000;
constexpr std::chrono::seconds staleAfter(15); // three refreshes

bool areHeadings(std::string_view line)
{
    return line == "time" || line.starts_with("time,");
}

std::string_view withoutReturn(std::string_view line)
{
    return line.ends_with('\r') ? line.substr(0, line.size() - 1) : line;
}

// "TC0P CPU Proximity [celsius]"; a device's key may have blanks, the kind of its level has none.
std::optional<Figure> figureOf(std::string_view heading)
{
    const auto bracket = heading.rfind(" [");
    if (bracket == std::string_view::npos || !heading.ends_with(']'))
        return std::nullopt;
    const auto quantity = quantityOf(heading.substr(bracket + 2, heading.size() - bracket - 3));
    const auto name = heading.substr(0, bracket);
    const auto blank = quantity == Quantity::batteryLevel ? name.rfind(' ') : name.find(' ');
    if (!quantity || blank == std::string_view::npos)
        return std::nullopt;
    return Figure{
        std::string(name.substr(0, blank)), std::string(name.substr(blank + 1)), rowOf(*quantity).unit, 0, {}};
}

std::optional<double> number(const std::string& cell)
{
    if (cell == "inf" || cell == "-inf")
        return std::numeric_limits<double>::infinity();
    std::istringstream stream(cell);
    stream.imbue(std::locale::classic());
    double value = 0;
    return stream >> value && stream.peek() == std::istringstream::traits_type::eof() ? std::optional(value)
                                                                                      : std::nullopt;
}

} // namespace

bool WatchCSV::isOne(const std::string& path)
{
    LineReader lines(openRegularFile(path));
    const auto line = lines.next(longestLine);
    return line && areHeadings(withoutReturn(*line));
}

std::optional<WatchCSV> WatchCSV::open(const std::string& path, std::string& fault)
{
    auto file = openRegularFile(path);
    if (!file) {
        fault = path + ": " + std::strerror(errno);
        return std::nullopt;
    }
    WatchCSV csv(path, LineReader(std::move(file)));
    fault = csv.lookThrough();
    return fault.empty() ? std::optional(std::move(csv)) : std::nullopt;
}

WatchCSV::WatchCSV(std::string name, LineReader opened)
    : path(std::move(name))
    , lines(std::move(opened))
{
}

std::optional<WatchCSV::Row> WatchCSV::next(std::string& fault)
{
    auto line = nextLine();
    while (line && areHeadings(*line)) {
        takeHeadings(*line);
        line = nextLine();
    }
    if (!line) {
        fault = errno == 0 ? "" : lineFault(std::strerror(errno));
        return std::nullopt;
    }
    Row row{parseWallTime(line->substr(0, line->find(','))).value_or(WallTime()), false, {}};
    fault = takeCells(*line, row.figures);
    if (!fault.empty())
        return std::nullopt;
    row.follows = previous && row.at >= *previous && row.at - *previous <= longestPause;
    previous = row.at;
    return row;
}

// Without its end; nothing at the end of the file, which an unended line is too, or after an error (errno).
std::optional<std::string_view> WatchCSV::nextLine()
{
    const auto line = lines.next(longestLine);
    return line && lines.isLineEnded() ? std::optional(withoutReturn(*line)) : std::nullopt;
}

void WatchCSV::takeHeadings(std::string_view line)
{
    columns.clear();
    for (const auto& heading : csvFields(line))
        columns.push_back(figureOf(heading));
}

std::string WatchCSV::takeTime(std::string_view line)
{
    const auto time = parseWallTime(line.substr(0, line.find(',')));
    if (!time)
        return lineFault("does not begin with a time such as 2026-11-21T22:10:04.123Z");
    if (previous && *time > *previous)
        shortestPause = std::min<std::chrono::duration<double>>(shortestPause, *time - *previous);
    previous = *time;
    earliest = std::min(earliest, *time);
    latest = std::max(latest, *time);
    return {};
}

std::string WatchCSV::lookThrough()
{
    const auto beginning = lines.mark();
    std::string fault;
    auto line = nextLine();
    for (; line && fault.empty(); line = nextLine()) {
        if (!areHeadings(*line))
            fault = takeTime(*line);
        else if (std::ranges::count(*line, ',') > static_cast<std::ptrdiff_t>(mostColumns))
            fault = lineFault(fmt::format("has more than {} columns", mostColumns));
    }
    if (!fault.empty() || errno != 0)
        return fault.empty() ? lineFault(std::strerror(errno)) : fault;
    if (latest <= earliest)
        return path + ": has no two rows of different times to draw a line between";
    // Somebody may have thinned the rows out evenly.
    longestPause = std::max<std::chrono::duration<double>>(staleAfter, 3 * shortestPause);
    previous.reset();
    return lines.goBack(beginning) ? "" : path + ": " + std::strerror(errno);
}

std::string WatchCSV::takeCells(std::string_view line, std::vector<Figure>& figures) const
{
    const auto cells = csvFields(line);
    if (cells.size() != columns.size())
        return lineFault(fmt::format("has {} cells below {} headings", cells.size(), columns.size()));
    for (std::size_t place = 1; place < cells.size(); ++place) {
        if (!columns[place] || cells[place].empty())
            continue;
        const auto value = number(cells[place]);
        if (!value)
            return lineFault(fmt::format("cell {} is no number", place + 1));
        figures.push_back(*columns[place]);
        figures.back().value = *value;
    }
    return {};
}

std::string WatchCSV::lineFault(const std::string& why) const
{
    return fmt::format("{}: line {}: {}", path, lines.lineNumber(), why);
}

} // namespace orv
