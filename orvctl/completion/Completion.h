#pragma once

#include "orvctl/completion/CommandWords.h"

#include <string>

namespace orv {

/// Scripts that make a shell complete a program's commands, options and what those take.
std::string bashCompletion(const CLI::App& program);
std::string fishCompletion(const CLI::App& program);
std::string zshCompletion(const CLI::App& program);

} // namespace orv
