#include "orvctl/completion/Completion.h"
#include "orvctl/commands/Commands.h"
#include "orvctl/views/Terminal.h"

#include <map>
#include <memory>
#include <string>

namespace orv {

namespace {

using Script = std::string (*)(const Arguments& program);

const std::map<std::string, Script> scripts{{"bash", bashCompletion}, {"fish", fishCompletion}, {"zsh", zshCompletion}};

} // namespace

void addCompletion(Arguments& program, Run& run)
{
    auto command = program.addCommand("completion", "The script by which a shell completes orvctl's arguments");
    const auto shell = std::make_shared<std::string>();
    command.addOption("SHELL", *shell, "bash, fish or zsh")
        .required()
        .oneOf({"bash", "fish", "zsh"})
        .withoutValueInHelp();
    command.showExample("orvctl completion fish >~/.config/fish/completions/orvctl.fish");
    command.whenAsked([=, &program, &run] { run = [=, &program] { return print(scripts.at(*shell)(program)); }; });
}

} // namespace orv
