#include "orvctl/watching/Watch.h"

#include "orvctl/collecting/SimulatedWatch.h"
#include "orvctl/commands/Commands.h"
#include "orvctl/views/Terminal.h"
#include "orvctl/watching/LineOutput.h"

#include <unistd.h>

#include <chrono>
#include <map>
#include <memory>
#include <optional>

namespace orv {

namespace {

using MakeFormat = std::unique_ptr<WatchFormat> (*)();

const std::map<std::string, MakeFormat> formats{{"table", makeWatchTable}, {"jsonl", makeJSONLines}, {"csv", makeCSV},
    {"waybar", makeWaybar}, {"i3bar", makeI3bar}};

struct Options {
    std::string format = "table";
    std::vector<std::string> chosen;
    std::optional<std::string> machinePath;
};

int watch(const Options& options)
{
    endOnSignals(cleanAfterSimulatedMac);
    LineOutput output;
    const auto format = formats.at(options.format)();
    Watch watch(*format, options.chosen,
        {[&](const std::string& text) { return output.write(text); },
            [](const std::string& line) { complain(line, 0); }, std::chrono::system_clock::now});
    const auto fault = options.machinePath ? watchSimulatedMac(*options.machinePath, watch, STDOUT_FILENO)
                                           : watchService(watch, STDOUT_FILENO);
    if (!output.fault.empty())
        return complain(output.fault, 1);
    return fault.empty() ? 0 : complain(fault, options.machinePath ? 2 : 1);
}

} // namespace

void addWatch(Arguments& program, Run& run)
{
    auto command = program.addCommand("watch", "One output for each refresh, until it is ended");
    const auto options = std::make_shared<Options>();
    command.addOption("--format", options->format, "table (unless given), jsonl, csv, waybar or i3bar")
        .named("FORMAT")
        .oneOf({"table", "jsonl", "csv", "waybar", "i3bar"});
    command.addOption("--only", options->chosen, "What has this key or title; may be repeated")
        .named("KEY|TITLE")
        .oneValueEach();
    command.addOption("--simulate", options->machinePath, "A machine file or recording, without any service")
        .named("FILE");
    command.showExample("orvctl watch --only \"CPU Proximity\" --format csv");
    command.whenAsked([=, &run] { run = [=] { return watch(*options); }; });
}

} // namespace orv
