#include "orvctl/arguments/Program.h"

#include "orvctl/arguments/HelpFormat.h"
#include "orvctl/arguments/UsageFault.h"
#include "orvctl/views/Terminal.h"

#include <CLI/CLI.hpp>

#include <sstream>

namespace orv {

Program::Program(const std::string& name, const std::string& does)
    : Arguments(*new CLI::App(does, name))
    , owned(parser)
{
    owned->formatter(std::make_shared<HelpFormat>()); // before the commands, which take it over
}

Program::~Program() = default;

void Program::requireCommand()
{
    owned->require_subcommand(1);
}

Option Program::addVersion(const std::function<std::string()>& text, const std::string& does)
{
    return Option(*owned->set_version_flag("--version", text, does));
}

std::optional<int> Program::parse(int argumentCount, char** arguments, const TellMisused& tellMisused)
{
    try {
        owned->parse(argumentCount, arguments);
        return std::nullopt;
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0) {
            std::ostringstream text;
            owned->exit(error, text);
            return print(text.str());
        }
        const auto commands = owned->get_subcommands();
        return tellMisused(commands.empty() ? "" : commands.front()->get_name(), usageFault(*owned, error));
    }
}

} // namespace orv
