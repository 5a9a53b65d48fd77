#include "orvctl/commands/ShowReply.h"

#include "orvctl/collecting/SimulatedClient.h"
#include "json/JSONWriter.h"

#include <memory>
#include <optional>

namespace orv {

namespace {

struct Options {
    bool json = false;
    std::optional<std::string> machinePath;
};

int show(Request request, ReplyTable table, const Options& options)
{
    const auto answer = options.machinePath ? askSimulatedMac(request, *options.machinePath) : askService(request);
    if (!answer.reply)
        return complain(answer.error, options.machinePath ? 2 : 1);
    if (options.json)
        return print(writeJSON(*answer.reply, KeyOrder::sorted) + '\n');
    const auto* readings = answer.reply->as<Dictionary>();
    return print(table(readings ? *readings : Dictionary(), terminalColour()));
}

} // namespace

void addReplyOptions(CLI::App& command, Run& run, Request request, ReplyTable table)
{
    const auto options = std::make_shared<Options>();
    command.add_flag("--json", options->json, "Print the reply exactly, as JSON");
    command.add_option("--simulate", options->machinePath, "Collect from a machine file, without any service")
        ->type_name("FILE");
    command.callback([=, &run] { run = [=] { return show(request, table, *options); }; });
}

} // namespace orv
