#pragma once

#include <CLI/CLI.hpp>

#include <string>

namespace orv {

/// Adds an option that takes a moment of a recording: seconds from 0 to 10^9.
template <typename Seconds>
CLI::Option* addMomentOption(CLI::App& command, const std::string& name, Seconds& seconds, const std::string& does)
{
    const auto fault = [](const std::string& text) -> std::string {
        double number = 0;
        const bool isMoment = CLI::detail::lexical_cast(text, number) && number >= 0 && number <= 1e9;
        return isMoment ? "" : "not a number of seconds from 0 to 1000000000";
    };
    return command.add_option(name, seconds, does)->type_name("SECONDS")->check(fault);
}

} // namespace orv
