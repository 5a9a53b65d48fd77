#include "orvctl/commands/Commands.h"
#include "orvctl/commands/ShowReply.h"
#include "orvctl/views/Age.h"
#include "orvctl/views/Table.h"

namespace orv {

void addBluetooth(CLI::App& application, Run& run)
{
    auto* command = application.add_subcommand("bluetooth", "Battery levels of Bluetooth devices and watches");
    command->footer("Example: orvctl bluetooth --json");
    addReplyOptions(*command, run, Request::bluetooth, {bluetoothTable, bluetoothAge});
}

} // namespace orv
