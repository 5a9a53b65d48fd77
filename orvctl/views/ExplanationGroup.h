#pragma once

#include "explain/Change.h"
#include "explain/Verdict.h"
#include "orvctl/views/Terminal.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orv {

/// What follows a line that has a change of its own.
inline constexpr std::size_t changeIndent = 8;

/// Entries under a heading that says their verdict, and the change that most of them have.
class ExplanationGroup {
public:
    /// `line` is one or more whole lines.
    void add(std::string line, const std::optional<Change>& change)
    {
        lines.push_back({std::move(line), wordsOf(change)});
    }
    /// A short text that may stand beside others.
    void addCell(std::string cell, const std::optional<Change>& change)
    {
        cells.push_back({std::move(cell), wordsOf(change)});
    }

    std::string text(std::string_view subject, Verdict verdict, Colour colour) const;

private:
    struct Entry {
        std::string text;
        std::string change;
    };

    static std::string wordsOf(const std::optional<Change>& change) { return change ? describe(*change) : ""; }
    std::string commonChange() const;
    std::string cellsText(std::string_view common) const;

    std::vector<Entry> lines;
    std::vector<Entry> cells;
};

} // namespace orv
