#include "orvctl/watching/Figures.h"
#include "orvctl/watching/WallTime.h"
#include "orvctl/watching/WatchFormat.h"

#include <fmt/core.h>

#include <algorithm>
#include <set>
#include <string_view>
#include <utility>

namespace orv {

namespace {

// RFC 4180, section 2.
std::string field(std::string_view text)
{
    if (text.find_first_of("\",\r\n") == std::string_view::npos)
        return std::string(text);
    std::string quoted = "\"";
    for (const char character : text)
        quoted.append(character == '"' ? 2 : 1, character);
    return quoted + '"';
}

std::string heading(const Figure& figure)
{
    return fmt::format("{} {} [{}]", figure.key, figure.title, figure.unit);
}

/// A column is that of a figure, or of a name that was chosen and fitted none when the columns were laid out.
struct Column {
    std::string heading;
    std::string name = {};

    bool holds(const Figure& figure) const
    {
        return name.empty() ? heading == orv::heading(figure) : isNamed(figure, name);
    }
};

class CSV final : public WatchFormat {
public:
    WatchOutput refreshed(const Moment& moment) override
    {
        WatchOutput output;
        const auto figures = figuresOf(moment);
        if (columns.empty() && moment.hasReadings)
            output.text = layOut(moment, figures);
        if (columns.empty())
            return output;
        output.text += row(moment, figures);
        for (const auto& figure : figures) {
            if (columnOf(figure) == columns.end() && unshown.insert(heading(figure)).second)
                output.remarks.push_back(heading(figure) + " has no column: it appeared after the first output");
        }
        return output;
    }

private:
    std::string layOut(const Moment& moment, const std::vector<Figure>& figures)
    {
        for (const auto& figure : figures)
            columns.push_back({heading(figure)});
        for (const auto& name : moment.chosen) {
            if (std::ranges::none_of(figures, [&](const auto& figure) { return isNamed(figure, name); }))
                columns.push_back({name, name});
        }
        std::string line = "time";
        for (const auto& column : columns)
            line += ',' + field(column.heading);
        return line + "\r\n";
    }

    std::vector<Column>::const_iterator columnOf(const Figure& figure) const
    {
        return std::ranges::find_if(columns, [&](const auto& column) { return column.holds(figure); });
    }

    std::string row(const Moment& moment, const std::vector<Figure>& figures) const
    {
        auto line = rfc3339(moment.at);
        for (const auto& column : columns) {
            const auto found = std::ranges::find_if(figures, [&](const auto& figure) { return column.holds(figure); });
            line += ',' + (found == figures.end() ? std::string() : exactText(*found));
        }
        return line + "\r\n";
    }

    std::vector<Column> columns; // those of the first output that had a reading
    std::set<std::string> unshown;
};

} // namespace

std::unique_ptr<WatchFormat> makeCSV()
{
    return std::make_unique<CSV>();
}

} // namespace orv
