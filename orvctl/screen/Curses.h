#pragma once

// The library's wide-character functions, without the macros of its short names. For source files alone.
#define NCURSES_NOMACROS 1
#ifndef _XOPEN_SOURCE_EXTENDED
#define _XOPEN_SOURCE_EXTENDED 1
#endif
#include <curses.h>
#include <term.h>

// Macros of the terminal library that ours need the names of.
#undef columns
#undef lines
