#pragma once

#include "orvctl/UsageFault.h"
#include "orvctl/views/Terminal.h"

#include <CLI/CLI.hpp>

#include <cstdio>
#include <optional>
#include <sstream>
#include <string>

namespace orv {

/// Status 2, after one line on standard error.
inline int tellMisused(const CLI::App& application, const std::string& why)
{
    std::fprintf(stderr, "%s: %s\n", application.get_name().c_str(), why.c_str());
    return 2;
}

using TellMisused = int (*)(const CLI::App& application, const std::string& why);

/// Parses a program's arguments. When the program has nothing more to do: its exit status, 0 after --help or
/// --version; that of `misused`, which tells why, for arguments that cannot be used.
inline std::optional<int> parseCommandLine(
    CLI::App& application, int argumentCount, char** arguments, TellMisused misused = tellMisused)
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
        return misused(application, usageFault(application, error));
    }
}

} // namespace orv
