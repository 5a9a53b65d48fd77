#include "orvctl/commands/Commands.h"
#include "orvctl/commands/ShowReply.h"
#include "orvctl/views/Age.h"
#include "orvctl/views/Table.h"

namespace orv {

void addThermal(CLI::App& application, Run& run)
{
    auto* command = application.add_subcommand("thermal", "Temperatures and fans");
    addReplyOptions(*command, run, Request::thermal, {thermalTable, thermalAge});
}

} // namespace orv
