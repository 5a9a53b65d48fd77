#include "orvctl/collecting/Replay.h"

#include "orvctl/commands/Commands.h"
#include "orvctl/commands/ShowReply.h"
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

void addReplay(Arguments& program, Run& run)
{
    const auto plan = std::make_shared<ReplayPlan>();
    auto command = program.addCommand("replay", "Play a recording, one line of JSON for each refresh");
    command.addOption("RECORDING", plan->path, "What to play").required();
    takingMoment(command.addOption("--from", plan->from, "Print from so many seconds on"));
    takingMoment(command.addOption("--to", plan->to, "Play up to so many seconds"));
    const auto thermal = std::make_shared<bool>(false);
    const auto bluetooth = std::make_shared<bool>(false);
    const auto onlyThermal = command.addFlag("--thermal", *thermal, "Temperatures and fans alone");
    command.addFlag("--bluetooth", *bluetooth, "Battery levels alone").excludes(onlyThermal);
    command.showExample("orvctl replay day.json --thermal --to 3600");
    command.whenAsked([=, &run] {
        plan->showsThermal = !*bluetooth;
        plan->showsBluetooth = !*thermal;
        run = [=] { return replayRecording(*plan); };
    });
}

} // namespace orv
