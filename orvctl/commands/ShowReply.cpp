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

int show(Request request, const ReplyView& view, const Options& options)
{
    const auto answer = options.machinePath ? askSimulatedMac(request, *options.machinePath) : askService(request);
    if (!answer.reply)
        return complain(answer.error, options.machinePath ? 2 : 1);
    if (options.json)
        return print(writeJSON(*answer.reply, KeyOrder::sorted) + '\n');
    const auto* readings = answer.reply->as<Dictionary>();
    const auto table = view.table(readings ? *readings : Dictionary(), terminalColour());
    return print(table + (answer.timing ? view.age(*answer.timing) : ""));
}

} // namespace

void addReplyOptions(CLI::App& command, Run& run, Request request, ReplyView view)
{
    const auto options = std::make_shared<Options>();
    command.add_flag("--json", options->json, "Print the reply exactly, as JSON");
    command.add_option("--simulate", options->machinePath, "Collect from a machine file, without any service")
        ->type_name("FILE");
    command.callback([=, &run] { run = [=] { return show(request, view, *options); }; });
}

} // namespace orv
