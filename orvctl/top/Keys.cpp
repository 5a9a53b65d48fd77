#include "orvctl/top/Keys.h"

namespace orv {

namespace {

constexpr KeyPress character(char32_t which)
{
    return {Key::character, which};
}

constexpr KeyPress key(Key which)
{
    return {which, 0};
}

// clang-format off
constexpr KeyRow rows[]{
    {key(Key::down), Action::down, "j, down", "the next line"},
    {character('j'), Action::down, "", ""},
    {key(Key::up), Action::up, "k, up", "the line before"},
    {character('k'), Action::up, "", ""},
    {key(Key::pageDown), Action::pageDown, "PgDn, PgUp", "a page on or back"},
    {key(Key::pageUp), Action::pageUp, "", ""},
    {key(Key::home), Action::first, "g, G, Home, End", "the first or the last line"},
    {character('g'), Action::first, "", ""},
    {key(Key::end), Action::last, "", ""},
    {character('G'), Action::last, "", ""},
    {key(Key::enter), Action::toggle, "Enter", "fold or unfold the group"},
    {key(Key::right), Action::unfold, "right, left", "unfold, fold it"},
    {character('l'), Action::unfold, "", ""},
    {key(Key::left), Action::fold, "", ""},
    {character('h'), Action::fold, "", ""},
    {character('u'), Action::unfoldAll, "u", "unfold all groups"},
    {character('a'), Action::foldToFit, "a", "fold only what does not fit"},
    {character('/'), Action::filter, "/", "show only what has a text in its name"},
    {character('s'), Action::sort, "s", "sort by title, value or key"},
    {character('f'), Action::freeze, "f", "freeze the screen, or let it go on"},
    {character('e'), Action::explain, "e", "explain the selected reading"},
    {key(Key::escape), Action::leave, "Esc", "close a page; show everything again"},
    {character('?'), Action::help, "?", "this page"},
    {character('\x0C'), Action::redraw, "Ctrl-L", "draw the screen anew"},
    {character('q'), Action::quit, "q, Ctrl-C", "end"},
    {character(' '), Action::pause, "Space", "pause, or play on", true},
    {character('.'), Action::step, ".", "play up to the next refresh", true},
    {character('<'), Action::minuteBack, "<, >", "a minute back or on", true},
    {character(','), Action::minuteBack, "", "", true},
    {character('>'), Action::minuteOn, "", "", true},
    {character('['), Action::tenMinutesBack, "[, ]", "ten minutes back or on", true},
    {character(']'), Action::tenMinutesOn, "", "", true},
    {character('-'), Action::slower, "-, +", "slower, faster", true},
    {character('+'), Action::faster, "", "", true},
    {character('='), Action::faster, "", "", true},
    {character('0'), Action::tenth, "0 to 9", "so many tenths from its beginning", true},
};
// clang-format on

bool isPressed(const KeyRow& row, const KeyPress& press)
{
    const bool isDigit = press.key == Key::character && press.character >= '0' && press.character <= '9';
    return row.press == press || (row.action == Action::tenth && isDigit);
}

} // namespace

std::span<const KeyRow> keyRows()
{
    return rows;
}

std::optional<Action> actionOf(const KeyPress& press, bool isRecording)
{
    for (const auto& row : rows) {
        if (isPressed(row, press) && (isRecording || !row.isOfRecordings))
            return row.action;
    }
    return std::nullopt;
}

} // namespace orv
