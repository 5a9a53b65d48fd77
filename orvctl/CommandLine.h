#pragma once

#include "orvctl/UsageFault.h"
#include "orvctl/views/Terminal.h"

#include <CLI/CLI.hpp>

#include <cstdio>
#include <optional>
#include <sstream>

namespace orv {

/// Parses a program's arguments. When the program has nothing more to do: its exit status, 0 after --help or
/// --version, 2 and one line on standard error for arguments that cannot be used.
inline std::optional<int> parseCommandLine(CLI::App& application, int argumentCount, char** arguments)
{
    try {
        application.parse(argumentCount, arguments);
        return std::nullopt;
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0) {
            std::ostringstream text;
            application.exit(error, text);
            return print(text.str());
        }
        std::fprintf(stderr, "%s: %s\n", application.get_name().c_str(), usageFault(application, error).c_str());
        return 2;
    }
}

} // namespace orv
