#include "orvctl/completion/Completion.h"

namespace orv {

namespace {

constexpr const char* beginning = R"(# Completion for PROGRAM(1) in fish.

function __PROGRAM_command
    set -l words (commandline -opc)
    test "$words[2]" = "$argv[1]"
end

complete -c PROGRAM -f
)";

std::string quoted(const std::string& text)
{
    return "'" + replaced(replaced(text, "\\", "\\\\"), "'", "\\'") + "'";
}

std::string taken(const Taken& value)
{
    switch (value.what) {
    case Takes::nothing:
        return {};
    case Takes::text:
        return " -x";
    case Takes::file:
        return " -r -F";
    case Takes::oneOf:
        return " -x -a " + quoted(joined(value.words));
    }
    return {};
}

std::string optionLine(const std::string& condition, const OptionWords& option)
{
    std::string line = condition;
    for (const auto& name : option.names)
        line += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
    return line + taken(option.value) + " -d " + quoted(option.description) + "\n";
}

std::string commandLines(const CommandWords& command)
{
    const auto condition = "complete -c PROGRAM -n '__PROGRAM_command " + command.name + "'";
    std::string lines;
    for (const auto& option : command.options)
        lines += optionLine(condition, option);
    if (command.arguments.what == Takes::file)
        lines += condition + " -F\n";
    if (command.arguments.what == Takes::oneOf)
        lines += condition + " -a " + quoted(joined(command.arguments.words)) + "\n";
    return lines;
}

} // namespace

std::string fishCompletion(const Arguments& program)
{
    std::string script = beginning;
    const std::string atTop = "complete -c PROGRAM -n '__PROGRAM_command \"\"'";
    const auto top = wordsOf(program);
    for (const auto& option : top.options)
        script += optionLine(atTop, option);
    const auto commands = commandsOf(program);
    for (const auto& command : commands)
        script += atTop + " -a " + command.name + " -d " + quoted(command.description) + "\n";
    for (const auto& command : commands)
        script += commandLines(command);
    return replaced(script, "PROGRAM", top.name);
}

} // namespace orv
