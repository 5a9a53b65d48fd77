#include "orvctl/commands/Commands.h"
#include "orvctl/commands/ShowReply.h"
#include "orvctl/views/Age.h"
#include "orvctl/views/Table.h"

#include <memory>

namespace orv {

void addThermal(Arguments& program, Run& run)
{
    auto command = program.addCommand("thermal", "Temperatures and fans");
    const auto isFlat = std::make_shared<bool>(false);
    command.addFlag("--flat", *isFlat, "One list by title, without groups");
    const auto table = [isFlat](const Dictionary& reply, Colour colour) {
        return *isFlat ? flatThermalTable(reply, colour) : thermalTable(reply, colour);
    };
    command.showExample("orvctl thermal --simulate machines/macbookpro-m1.json");
    addReplyOptions(command, run, Request::thermal, {table, thermalAge});
}

} // namespace orv
