#include "orvctl/completion/Completion.h"
#include "orvctl/commands/Commands.h"
#include "orvctl/views/Terminal.h"

#include <map>
#include <memory>
#include <string>

namespace orv {

namespace {

using Script = std::string (*)(const CLI::App& program);

const std::map<std::string, Script> scripts{{"bash", bashCompletion}, {"fish", fishCompletion}, {"zsh", zshCompletion}};

} // namespace

void addCompletion(CLI::App& application, Run& run)
{
    auto* command =
        application.add_subcommand("completion", "The script by which a shell completes orvctl's arguments");
    const auto shell = std::make_shared<std::string>();
    command->add_option("SHELL", *shell, "bash, fish or zsh")
        ->required()
        ->check(CLI::IsMember({"bash", "fish", "zsh"}))
        ->option_text(" ");
    command->footer("Example: orvctl completion fish >~/.config/fish/completions/orvctl.fish");
    command->callback(
        [=, &application, &run] { run = [=, &application] { return print(scripts.at(*shell)(application)); }; });
}

} // namespace orv
