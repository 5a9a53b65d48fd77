#pragma once

#include "orvctl/commands/Commands.h"
#include "orvctl/views/Terminal.h"
#include "service/Client.h"

#include <string>

namespace orv {

using ReplyTable = std::string (*)(const Dictionary& reply, Colour colour);

/// Gives a command that shows one reply its options: as a table or as JSON, of the service or of a machine file.
void addReplyOptions(CLI::App& command, Run& run, Request request, ReplyTable table);

} // namespace orv
