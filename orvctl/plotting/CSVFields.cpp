#include "orvctl/plotting/CSVFields.h"

#include <algorithm>

namespace orv {

namespace {

// Takes a quoted cell from the row's beginning; a quote that is doubled is one of the text.
std::string takeQuoted(std::string_view& row)
{
    std::string cell;
    for (row.remove_prefix(1); !row.empty(); row.remove_prefix(1)) {
        const bool isDoubled = row.starts_with("\"\"");
        if (row.front() == '"' && !isDoubled)
            break;
        if (isDoubled)
            row.remove_prefix(1);
        cell += row.front();
    }
    row.remove_prefix(std::min(row.find(','), row.size()));
    return cell;
}

std::string takePlain(std::string_view& row)
{
    const auto length = std::min(row.find(','), row.size());
    const std::string cell(row.substr(0, length));
    row.remove_prefix(length);
    return cell;
}

} // namespace

std::vector<std::string> csvFields(std::string_view row)
{
    std::vector<std::string> cells;
    for (;;) {
        cells.push_back(row.starts_with('"') ? takeQuoted(row) : takePlain(row));
        if (row.empty())
            return cells;
        row.remove_prefix(1);
    }
}

} // namespace orv
