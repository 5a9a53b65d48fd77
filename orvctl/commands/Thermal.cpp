#include "orvctl/commands/Commands.h"
#include "orvctl/commands/ShowReply.h"
#include "orvctl/views/Age.h"
#include "orvctl/views/Table.h"

#include <memory>

namespace orv {

void addThermal(CLI::App& application, Run& run)
{
    auto* command = application.add_subcommand("thermal", "Temperatures and fans");
    const auto isFlat = std::make_shared<bool>(false);
    command->add_flag("--flat", *isFlat, "One list by title, without groups");
    const auto table = [isFlat](const Dictionary& reply, Colour colour) {
        return *isFlat ? flatThermalTable(reply, colour) : thermalTable(reply, colour);
    };
    command->footer("Example: orvctl thermal --simulate machines/macbookpro-m1.json");
    addReplyOptions(*command, run, Request::thermal, {table, thermalAge});
}

} // namespace orv
