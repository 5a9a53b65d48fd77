#pragma once

#include "orvctl/collecting/SimulatedClient.h"
#include "orvctl/commands/Commands.h"
#include "orvctl/views/Terminal.h"
#include "service/Client.h"

#include <functional>
#include <string>

namespace orv {

struct ReplyView {
    std::function<std::string(const Dictionary& reply, Colour colour)> table;
    std::string (*age)(const ServiceTiming& timing); // what is said below a table of old readings
};

/// Gives a command that can collect from a file the options that say from which and at which moment.
void addSimulationOptions(Arguments& command, SimulatedMoment& moment);

/// For an option that takes a moment of a recording.
Option takingMoment(Option option);

/// Gives a command that shows one reply its options: as a table or as JSON, of the service or of a machine file.
void addReplyOptions(Arguments& command, Run& run, Request request, const ReplyView& view);

} // namespace orv
