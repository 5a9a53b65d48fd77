#pragma once

#include <CLI/CLI.hpp>

#include <string>

namespace orv {

/// Why arguments cannot be used, and where to see which can: one line.
inline std::string usageFault(const CLI::App& application, const CLI::ParseError& error)
{
    const auto commands = application.get_subcommands();
    const auto strangers = application.remaining();
    const bool isCommandMissing = commands.empty() && dynamic_cast<const CLI::RequiredError*>(&error);
    const auto fault = !isCommandMissing ? error.what()
        : strangers.empty()              ? "no command"
                                         : "\"" + strangers.front() + "\" is no command";
    const auto command = commands.empty() ? "" : commands.front()->get_name() + " ";
    return fault + "; see " + application.get_name() + " " + command + "--help";
}

} // namespace orv
