#pragma once

#include <string>

namespace orv {

enum class Colour { off, on };

/// On when standard output is a terminal and NO_COLOR does not refuse it.
Colour terminalColour();

/// Prints a command's result. Exit status 0, or 1 and one line when it could not be written.
int print(const std::string& text);

/// Prints the one line of a command that failed and returns its exit status.
int complain(const std::string& reason, int status);

} // namespace orv
