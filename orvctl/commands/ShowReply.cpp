#include "orvctl/commands/ShowReply.h"

#include "orvctl/collecting/SimulatedClient.h"
#include "json/JSONWriter.h"

#include <memory>
#include <optional>

namespace orv {

namespace {

struct Options {
    bool json = false;
    SimulatedMoment moment;
};

int show(Request request, const ReplyView& view, const Options& options)
{
    const auto answer = options.moment.path ? askSimulatedMac(request, options.moment) : askService(request);
    if (!answer.reply)
        return complain(answer.error, options.moment.path ? 2 : 1);
    if (options.json)
        return print(writeJSON(*answer.reply, KeyOrder::sorted) + '\n');
    const auto* readings = answer.reply->as<Dictionary>();
    const auto table = view.table(readings ? *readings : Dictionary(), terminalColour());
    return print(table + (answer.timing ? view.age(*answer.timing) : ""));
}

} // namespace

void addSimulationOptions(Arguments& command, SimulatedMoment& moment)
{
    const auto simulate =
        command.addOption("--simulate", moment.path, "The Mac of a machine file, without any service").named("FILE");
    takingMoment(command.addOption("--at", moment.at, "With --simulate: so many seconds into a recording"))
        .needs(simulate);
}

Option takingMoment(Option option)
{
    return option.named("SECONDS").inRange(0, 1e9, "not a number of seconds from 0 to 1000000000");
}

void addReplyOptions(Arguments& command, Run& run, Request request, const ReplyView& view)
{
    const auto options = std::make_shared<Options>();
    command.addFlag("--json", options->json, "Print the reply exactly, as JSON");
    addSimulationOptions(command, options->moment);
    command.whenAsked([=, &run] { run = [=] { return show(request, view, *options); }; });
}

} // namespace orv
