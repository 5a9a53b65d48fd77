#include "orvctl/CommandLine.h"
#include "orvctl/HelpFormat.h"
#include "orvctl/commands/Commands.h"
#include "orvctl/commands/Version.h"
#include "orvctl/views/Terminal.h"

#include <exception>
#include <memory>

namespace {

// Whoever calls a check reads its line, and takes no other status for one that it could not make.
int tellMisusedCommand(const CLI::App& application, const std::string& why)
{
    return application.got_subcommand(orv::checkCommand) ? orv::tellCheckMisused(why)
                                                         : orv::tellMisused(application, why);
}

} // namespace

int main(int argumentCount, char** arguments)
{
    using namespace orv;
    CLI::App application("Shows what the helper service has measured.", "orvctl");
    addVersion(application);
    application.require_subcommand(1);
    application.formatter(std::make_shared<HelpFormat>()); // before the commands, which take it over
    application.footer("Example: orvctl thermal\nWhat a command takes: orvctl COMMAND --help");
    Run run;
    for (const auto addCommand : allCommands)
        addCommand(application, run);
    if (const auto status = parseCommandLine(application, argumentCount, arguments, tellMisusedCommand))
        return *status;
    try {
        return run();
    } catch (const std::exception& error) {
        return complain(error.what(), 1);
    }
}
