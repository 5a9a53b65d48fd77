#include "orvctl/commands/Commands.h"
#include "orvctl/commands/ShowReply.h"
#include "orvctl/views/Age.h"
#include "orvctl/views/Table.h"

namespace orv {

void addBluetooth(Arguments& program, Run& run)
{
    auto command = program.addCommand("bluetooth", "Battery levels of Bluetooth devices and watches");
    command.showExample("orvctl bluetooth --json");
    addReplyOptions(command, run, Request::bluetooth, {bluetoothTable, bluetoothAge});
}

} // namespace orv
