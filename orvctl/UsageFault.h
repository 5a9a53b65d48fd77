#pragma once

#include <CLI/CLI.hpp>

#include <string>

namespace orv {

/// Why arguments cannot be used, and where to see which can: one line.
inline std::string usageFault(const CLI::App& application, const CLI::ParseError& error)
{
    const auto commands = application.get_subcommands();
    const auto strangers = application.remaining();
    const auto name = application.get_name();
    if (!commands.empty())
        return std::string(error.what()) + "; see " + name + " " + commands.front()->get_name() + " --help";
    const bool isCommandMissing = dynamic_cast<const CLI::RequiredError*>(&error) != nullptr;
    const auto fault = !isCommandMissing ? error.what()
        : strangers.empty()              ? "no command"
                                         : "\"" + strangers.front() + "\" is no command";
    return fault + "; " + name + " --help lists them";
}

} // namespace orv
