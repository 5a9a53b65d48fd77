#include "orvctl/collecting/Replay.h"

#include "orvctl/commands/Commands.h"
#include "orvctl/commands/MomentOption.h"
#include "orvctl/views/Interruption.h"
#include "orvctl/views/Progress.h"
#include "orvctl/views/Terminal.h"

#include <unistd.h>

#include <memory>

namespace orv {

namespace {

int replayRecording(ReplayPlan plan)
{
    std::string fault;
    int status = 0;
    const Interruption interruption;
    Progress progress(!isatty(STDOUT_FILENO));
    plan.progress = [&](double reached, double end) { progress.show(reached, end); };
    const auto printLine = [&](const std::string& line) {
        status = print(line);
        return status == 0 && !interruption.hasCome();
    };
    return replay(plan, printLine, fault) ? status : complain(fault, 2);
}

} // namespace

void addReplay(CLI::App& application, Run& run)
{
    const auto plan = std::make_shared<ReplayPlan>();
    auto* command = application.add_subcommand("replay", "Play a recording, one line of JSON for each refresh");
    command->add_option("RECORDING", plan->path, "What to play")->required();
    addMomentOption(*command, "--from", plan->from, "Print from so many seconds on");
    addMomentOption(*command, "--to", plan->to, "Play up to so many seconds");
    const auto thermal = std::make_shared<bool>(false);
    const auto bluetooth = std::make_shared<bool>(false);
    auto* onlyThermal = command->add_flag("--thermal", *thermal, "Temperatures and fans alone");
    command->add_flag("--bluetooth", *bluetooth, "Battery levels alone")->excludes(onlyThermal);
    command->footer("Example: orvctl replay day.json --thermal --to 3600");
    command->callback([=, &run] {
        plan->showsThermal = !*bluetooth;
        plan->showsBluetooth = !*thermal;
        run = [=] { return replayRecording(*plan); };
    });
}

} // namespace orv
