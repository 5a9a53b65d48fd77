#pragma once

#include <CLI/CLI.hpp>

#include <string>

namespace orv {

/// What --help prints: an option and what it takes, and beside it what it does. Which options exclude each other is
/// left to the manual page, since a line has to fit a terminal.
class HelpFormat : public CLI::Formatter {
public:
    HelpFormat() { column_width(nameWidth); }

    std::string make_option_opts(const CLI::Option* option) const override
    {
        if (!option->get_option_text().empty() || option->get_type_size() == 0)
            return option->get_option_text();
        // After a colon stands what is checked, which the description says.
        const auto type = option->get_type_name();
        return type == "TEXT" ? "" : " " + type.substr(0, type.find(':'));
    }

private:
    static constexpr std::size_t nameWidth = 24;
};

} // namespace orv
