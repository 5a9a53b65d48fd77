#include "orvctl/commands/Commands.h"
#include "orvctl/views/Terminal.h"

#include <exception>
#include <string>

namespace {

// Whoever calls a check reads its line, and takes no other status for one that it could not make.
int tellMisused(const std::string& command, const std::string& why)
{
    return command == orv::checkCommand ? orv::tellCheckMisused(why) : orv::complain(why, 2);
}

} // namespace

int main(int argumentCount, char** arguments)
{
    using namespace orv;
    Program program("orvctl", "Shows what the helper service has measured.");
    addVersion(program);
    program.requireCommand();
    program.showExample("orvctl thermal\nWhat a command takes: orvctl COMMAND --help");
    Run run;
    for (const auto addCommand : allCommands)
        addCommand(program, run);
    if (const auto status = program.parse(argumentCount, arguments, tellMisused))
        return *status;
    try {
        return run();
    } catch (const std::exception& error) {
        return complain(error.what(), 1);
    }
}
