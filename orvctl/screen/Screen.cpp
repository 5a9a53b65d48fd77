#include "orvctl/screen/Screen.h"

#include "orvctl/screen/Curses.h"
#include "orvctl/screen/TerminalRefusal.h"
#include "orvctl/views/ColumnWidth.h"
#include "readings/Text.h"

#include <termios.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <string>
#include <string_view>
#include <utility>

namespace orv {

namespace {

struct Look {
    attr_t without; // colours
    attr_t with;
    short few; // the colour where there are 8 or 16; below 0 the terminal's own
    short many; // where there are 256
};

// In the order of Style; seen on light and on dark grounds.
constexpr std::array<Look, 7> looks{{
    {A_NORMAL, A_NORMAL, -1, -1}, // plain
    {A_DIM, A_NORMAL, -2, 244}, // faint
    {A_BOLD, A_BOLD, -1, -1}, // strong
    {A_NORMAL, A_NORMAL, COLOR_GREEN, COLOR_GREEN}, // cool
    {A_BOLD, A_NORMAL, COLOR_YELLOW, 172}, // warm
    {A_BOLD, A_BOLD, COLOR_RED, 160}, // hot
    {A_REVERSE, A_BOLD, COLOR_RED, 160}, // alarm
}};

constexpr struct {
    int code;
    Key key;
} keyCodes[]{
    {KEY_UP, Key::up},
    {KEY_DOWN, Key::down},
    {KEY_LEFT, Key::left},
    {KEY_RIGHT, Key::right},
    {KEY_PPAGE, Key::pageUp},
    {KEY_NPAGE, Key::pageDown},
    {KEY_HOME, Key::home},
    {KEY_END, Key::end},
    {KEY_ENTER, Key::enter},
    {KEY_BACKSPACE, Key::backspace},
};

std::wstring wide(std::string_view text)
{
    std::wstring result;
    result.reserve(text.size());
    while (!text.empty()) {
        const auto [character, length] = decodeCharacter(text);
        result += static_cast<wchar_t>(character.value_or(U'?'));
        text.remove_prefix(length);
    }
    return result;
}

// The stop of output by a key would leave the program waiting where no signal ends it.
void refuseFlowControl()
{
    termios modes{};
    if (tcgetattr(STDIN_FILENO, &modes) != 0)
        return;
    modes.c_iflag &= ~static_cast<tcflag_t>(IXON);
    tcsetattr(STDIN_FILENO, TCSANOW, &modes);
    def_prog_mode();
}

std::optional<KeyPress> keyOfCode(wint_t code)
{
    for (const auto& row : keyCodes) {
        if (static_cast<wint_t>(row.code) == code)
            return KeyPress{row.key};
    }
    return std::nullopt;
}

KeyPress keyOfCharacter(wint_t character)
{
    switch (character) {
    case '\r':
    case '\n':
        return {Key::enter};
    case 0x1B:
        return {Key::escape};
    case 0x7F:
    case '\b':
        return {Key::backspace};
    default:
        return {Key::character, static_cast<char32_t>(character)};
    }
}

WINDOW* keyWindow = nullptr; // a pad, which asking for keys does not draw

} // namespace

Screen::Screen(bool hasColour)
    : shownSize(terminalSize())
{
    newterm(nullptr, output.stream(), stdin);
    cbreak();
    noecho();
    nonl();
    set_escdelay(25);
    typeahead(-1); // keys wait for a picture, which is not broken off to look for them
    refuseFlowControl();
    curs_set(0);
    keyWindow = newpad(1, 1);
    keypad(keyWindow, TRUE);
    nodelay(keyWindow, TRUE);
    chooseColours(hasColour);
    resize();
}

Screen::~Screen()
{
    leave();
    delwin(keyWindow);
}

void Screen::chooseColours(bool hasColour)
{
    const bool isColoured = hasColour && has_colors() && start_color() == OK && COLORS >= 8;
    if (isColoured)
        use_default_colors();
    short pair = 0;
    for (const auto& look : looks) {
        const auto colour = !isColoured ? short{-1} : COLORS >= 256 ? look.many : look.few;
        attr_t attribute = isColoured ? look.with : look.without;
        if (colour == -2)
            attribute = A_DIM;
        if (colour >= 0 && init_pair(++pair, colour, -1) == OK)
            attribute |= static_cast<attr_t>(COLOR_PAIR(pair));
        attributes.push_back(attribute);
    }
}

void Screen::show(Frame&& frame)
{
    output.hold();
    curs_set(0);
    shown.resize(frame.lines.size());
    for (std::size_t row = 0; row < frame.lines.size() && row < shownSize.height; ++row) {
        if (shown[row] != frame.lines[row])
            showLine(row, frame.lines[row]);
    }
    shown = std::move(frame.lines);
    if (frame.cursor) {
        wmove(stdscr, static_cast<int>(shownSize.height) - 1, static_cast<int>(*frame.cursor));
        curs_set(1);
    }
    wnoutrefresh(stdscr);
    doupdate();
    output.send();
}

void Screen::showLine(std::size_t row, const StyledLine& line)
{
    const attr_t reverse = line.isSelected ? A_REVERSE : A_NORMAL;
    wmove(stdscr, static_cast<int>(row), 0);
    std::size_t width = 0;
    for (const auto& [text, style] : line.texts) {
        wattrset(stdscr, static_cast<int>(attributes[static_cast<std::size_t>(style)] | reverse));
        const auto characters = wide(text);
        waddnwstr(stdscr, characters.data(), static_cast<int>(characters.size()));
        width += columnCount(text);
    }
    wattrset(stdscr, static_cast<int>(reverse));
    if (line.isSelected && width < shownSize.width)
        waddstr(stdscr, std::string(shownSize.width - width, ' ').c_str());
    else if (width < shownSize.width)
        wclrtoeol(stdscr);
    wattrset(stdscr, A_NORMAL);
}

std::optional<KeyPress> Screen::nextKey()
{
    for (;;) {
        wint_t character = 0;
        const int kind = wget_wch(keyWindow, &character);
        if (kind == ERR)
            return std::nullopt;
        if (kind == OK)
            return keyOfCharacter(character);
        if (const auto key = keyOfCode(character))
            return key;
    }
}

void Screen::resize()
{
    shownSize = terminalSize();
    resizeterm(static_cast<int>(shownSize.height), static_cast<int>(shownSize.width));
    redraw();
}

// A terminal that changed its size may have moved what it showed.
void Screen::redraw()
{
    shown.clear();
    werase(stdscr);
    clearok(stdscr, TRUE);
}

void Screen::leave()
{
    endwin();
}

void Screen::enter()
{
    reset_prog_mode();
    curs_set(0);
    resize();
}

} // namespace orv
