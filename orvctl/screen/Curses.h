#pragma once

// The library's wide-character functions, without the macros of its short names. For source files alone.
#define NCURSES_NOMACROS 1
#ifndef _XOPEN_SOURCE_EXTENDED
#define _XOPEN_SOURCE_EXTENDED 1 // NOLINT(bugprone-reserved-identifier): the library asks for it
#endif
#include <curses.h>
#include <term.h>

// Macros of the terminal library that ours need the names of.
#undef columns
#undef lines

namespace orv {

/// What a terminal is to be sent for something; nothing when it cannot do it. After setupterm or newterm.
inline const char* capability(const char* name)
{
    const char* const text = tigetstr(const_cast<char*>(name)); // which some releases of the library declare so
    const auto* const isNone = reinterpret_cast<const char*>(-1); // NOLINT(performance-no-int-to-ptr): the library's
    return text == isNone ? nullptr : text;
}

} // namespace orv
