#include "orvctl/screen/TerminalRefusal.h"

#include "orvctl/screen/Curses.h"

#include <langinfo.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <string_view>

namespace orv {

namespace {

constexpr const char* instead = "; use orvctl watch";

/// What is known of the terminal, until the screen finds it out for itself.
class KnownTerminal {
public:
    KnownTerminal() { isFound = setupterm(nullptr, STDOUT_FILENO, &outcome) == OK; }
    ~KnownTerminal()
    {
        if (isFound)
            del_curterm(cur_term);
    }
    KnownTerminal(const KnownTerminal&) = delete;
    KnownTerminal& operator=(const KnownTerminal&) = delete;

    bool canMoveItsCursor() const { return isFound && capability("cup"); }

private:
    int outcome = 0;
    bool isFound = false;
};

std::size_t sizeOf(unsigned short told, const char* usual)
{
    return static_cast<std::size_t>(std::max(told > 0 ? int(told) : tigetnum(const_cast<char*>(usual)), 1));
}

} // namespace

ScreenSize terminalSize()
{
    winsize size{};
    if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0)
        size = {};
    return {sizeOf(size.ws_col, "cols"), sizeOf(size.ws_row, "lines")}; // a serial line does not tell its size
}

std::string terminalRefusal()
{
    if (!isatty(STDIN_FILENO) || !isatty(STDOUT_FILENO))
        return std::string("top needs a terminal") + instead;
    const char* const type = std::getenv("TERM");
    if (!type || !*type)
        return std::string("TERM does not say what terminal this is") + instead;
    const KnownTerminal terminal;
    if (!terminal.canMoveItsCursor())
        return "the terminal \"" + std::string(type) + "\" is not known, or cannot move its cursor" + instead;
    const auto [width, height] = terminalSize();
    if (width < smallestScreen.width || height < smallestScreen.height)
        return "the terminal has " + std::to_string(width) + " columns and " + std::to_string(height)
            + " lines, top needs " + std::to_string(smallestScreen.width) + " and "
            + std::to_string(smallestScreen.height) + instead;
    return {};
}

bool isUTF8Terminal()
{
    return std::string_view(nl_langinfo(CODESET)) == "UTF-8";
}

} // namespace orv
