#pragma once

#include "orvctl/top/Top.h"

#include <string>

namespace orv {

/// Why nothing can be shown full-screen on standard input and output, in one line; empty when it can. Changes nothing
/// of the terminal.
std::string terminalRefusal();

/// How large the terminal is.
ScreenSize terminalSize();

/// Whether texts of the user's locale are UTF-8. To be asked after setlocale.
bool isUTF8Terminal();

} // namespace orv
