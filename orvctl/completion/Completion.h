#pragma once

#include "orvctl/arguments/CommandWords.h"

#include <string>

namespace orv {

/// Scripts that make a shell complete a program's commands, options and what those take.
std::string bashCompletion(const Arguments& program);
std::string fishCompletion(const Arguments& program);
std::string zshCompletion(const Arguments& program);

} // namespace orv
