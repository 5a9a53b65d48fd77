#include "orvctl/views/ExplanationGroup.h"

#include "orvctl/views/Text.h"

#include <fmt/core.h>

#include <algorithm>
#include <map>
#include <utility>

namespace orv {

namespace {

std::string ownChange(const std::string& change, std::string_view common)
{
    return change == common || change.empty() ? "" : paragraph(changeIndent, "shown " + change);
}

} // namespace

std::string ExplanationGroup::text(std::string_view subject, Verdict verdict, Colour colour) const
{
    auto result =
        '\n' + heading(fmt::format("{}: {} ({})", subject, textOf(verdict), lines.size() + cells.size()), colour);
    const auto common = commonChange();
    const auto isCommon = [&common](const Entry& entry) { return entry.change == common; };
    const bool isShared = std::ranges::all_of(lines, isCommon) && std::ranges::all_of(cells, isCommon);
    if (!common.empty())
        result += paragraph(2, fmt::format("shown {}{}", common, isShared ? "" : "; else as below each"));
    result += cellsText(common);
    for (const auto& [line, change] : lines)
        result += line + ownChange(change, common);
    return result;
}

// Of more than half of several entries, or of the only one.
std::string ExplanationGroup::commonChange() const
{
    std::map<std::string_view, std::size_t> counts;
    for (const auto* entries : {&lines, &cells}) {
        for (const auto& entry : *entries) {
            if (++counts[entry.change] * 2 > lines.size() + cells.size())
                return entry.change;
        }
    }
    return {};
}

std::string ExplanationGroup::cellsText(std::string_view common) const
{
    std::vector<std::string> together;
    std::string alone;
    for (const auto& [cell, change] : cells) {
        const auto own = ownChange(change, common);
        if (own.empty())
            together.push_back(cell);
        else
            alone.append(row("  " + cell)).append(own);
    }
    return columns(2, together) + alone;
}

} // namespace orv
