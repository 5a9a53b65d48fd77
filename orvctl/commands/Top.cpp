#include "explain/ThisMac.h"
#include "orvctl/collecting/SimulatedClient.h"
#include "orvctl/commands/Commands.h"
#include "orvctl/commands/ShowReply.h"
#include "orvctl/views/Terminal.h"
#include "platform/ProgramPaths.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace orv {

namespace {

struct Options {
    SimulatedMoment moment;
    bool isASCII = false;
};

std::vector<std::string> argumentsOf(const std::string& program, const Options& options)
{
    std::vector<std::string> arguments{program, "--orvctl", installationPrefix() + "/bin/orvctl"};
    const auto add = [&](const std::string& name, const std::string& value) {
        arguments.push_back(name + '=' + value);
    };
    if (options.moment.path) {
        add("--simulate", *options.moment.path);
        add("--at", std::to_string(options.moment.at));
    } else
        add("--machine", modelOfThisMac());
    if (options.isASCII)
        arguments.push_back("--ascii");
    return arguments;
}

// A program of its own takes the place of this one, which so needs nothing of what draws.
int showTop(const Options& options)
{
    const auto program = helperProgram("orvctl-top");
    auto arguments = argumentsOf(program, options);
    std::vector<char*> pointers;
    for (auto& argument : arguments)
        pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    execv(program.c_str(), pointers.data());
    return complain(program + ": " + std::strerror(errno), 1);
}

} // namespace

void addTop(Arguments& program, Run& run)
{
    auto command = program.addCommand("top", "A full-screen view of what changes, until it is ended");
    const auto options = std::make_shared<Options>();
    const auto simulate =
        command.addOption("--simulate", options->moment.path, "The Mac of a machine file; a recording is played")
            .named("FILE");
    takingMoment(command.addOption("--at", options->moment.at, "With --simulate: from so many seconds on"))
        .needs(simulate);
    command.addFlag("--ascii", options->isASCII, "Draw with ASCII characters alone");
    command.showExample("orvctl top --simulate machines/macbookpro-m1.json");
    command.whenAsked([=, &run] { run = [=] { return showTop(*options); }; });
}

} // namespace orv
