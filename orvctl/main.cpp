#include "orvctl/CommandLine.h"
#include "orvctl/collecting/SimulatedClient.h"
#include "orvctl/views/Table.h"
#include "service/Client.h"
#include "json/JSONWriter.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <optional>
#include <string>

namespace {

using namespace orv;

struct Options {
    bool json = false;
    std::optional<std::string> machinePath;
};

Colour terminalColour()
{
    const char* noColour = std::getenv("NO_COLOR");
    const bool isRefused = noColour && *noColour;
    return isatty(STDOUT_FILENO) && !isRefused ? Colour::on : Colour::off;
}

std::string rendered(Request request, const Value& reply, bool json)
{
    if (json)
        return writeJSON(reply, KeyOrder::sorted) + '\n';
    const auto* dictionary = reply.as<Dictionary>();
    const auto readings = dictionary ? *dictionary : Dictionary();
    return request == Request::thermal ? thermalTable(readings, terminalColour())
                                       : bluetoothTable(readings, terminalColour());
}

int show(Request request, const Options& options)
{
    const auto answer = options.machinePath ? askSimulatedMac(request, *options.machinePath) : askService(request);
    if (!answer.reply) {
        std::fprintf(stderr, "orvctl: %s\n", answer.error.c_str());
        return options.machinePath ? 2 : 1;
    }
    const auto text = rendered(request, *answer.reply, options.json);
    const bool isWritten = std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0;
    return isWritten ? 0 : 1;
}

CLI::App* addRequest(CLI::App& application, const char* name, const char* description, Options& options)
{
    auto* command = application.add_subcommand(name, description);
    command->add_flag("--json", options.json, "Print the reply exactly, as JSON");
    command->add_option("--simulate", options.machinePath, "Collect from a machine file, without any service")
        ->type_name("FILE");
    return command;
}

} // namespace

int main(int argumentCount, char** arguments)
{
    Options options;
    CLI::App application("Shows what the helper service has measured.", "orvctl");
    application.set_version_flag("--version", "orvctl " ORV_VERSION);
    application.require_subcommand(1);
    const auto* thermal = addRequest(application, "thermal", "Temperatures and fans", options);
    addRequest(application, "bluetooth", "Battery levels of Bluetooth devices and watches", options);
    if (const auto status = parseCommandLine(application, argumentCount, arguments))
        return *status;
    try {
        return show(thermal->parsed() ? Request::thermal : Request::bluetooth, options);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "orvctl: %s\n", error.what());
        return 1;
    }
}
