#include "orvctl/completion/Completion.h"

namespace orv {

namespace {

constexpr const char* beginning = R"(#compdef PROGRAM
# Completion for PROGRAM(1) in zsh.

_PROGRAM()
{
  local curcontext=$curcontext state state_descr line
  typeset -A opt_args
)";

constexpr const char* commandsBeginning = R"(    '1:command:->command' '*::argument:->argument'
  case $state in
  command)
    local -a commands=(
)";

constexpr const char* argumentsBeginning = R"(    )
    _describe -t commands command commands
    ;;
  argument)
    case $words[1] in
)";

// Read as a function of its own, or by "source".
constexpr const char* end = R"(    esac
    ;;
  esac
}

if [[ $funcstack[1] = _PROGRAM ]]; then
  _PROGRAM "$@"
else
  compdef _PROGRAM PROGRAM
fi
)";

// Within single quotes, and within the brackets or between the colons of what an option is described by.
std::string escaped(const std::string& text)
{
    std::string result;
    for (const char character : text) {
        if (character == '[' || character == ']' || character == ':' || character == '\\')
            result += '\\';
        result += character;
    }
    return replaced(result, "'", "'\\''");
}

std::string taken(const Taken& value)
{
    const auto name = ":" + escaped(value.name) + ":";
    switch (value.what) {
    case Takes::nothing:
        return {};
    case Takes::text:
        return name + " ";
    case Takes::file:
        return name + "_files";
    case Takes::oneOf:
        return name + "(" + joined(value.words) + ")";
    }
    return {};
}

std::string optionArgument(const OptionWords& option, const std::string& name)
{
    std::string described = option.value.isRepeated ? "*" : "(" + joined(option.names) + ")";
    described += name;
    if (option.value.what != Takes::nothing)
        described += name.starts_with("--") ? "=" : "+"; // the value may stand in the same word
    return "'" + described + "[" + escaped(option.description) + "]" + taken(option.value) + "'";
}

std::string argumentsCall(const CommandWords& command, const std::string& margin)
{
    std::string lines = margin + "_arguments";
    for (const auto& option : command.options) {
        for (const auto& name : option.names)
            lines += " \\\n" + margin + "  " + optionArgument(option, name);
    }
    if (command.arguments.what != Takes::nothing)
        lines += " \\\n" + margin + (command.arguments.isRepeated ? "  '*" : "  '1") + taken(command.arguments) + "'";
    return lines;
}

std::string commandCase(const CommandWords& command)
{
    const std::string margin(6, ' ');
    return "    " + command.name + ")\n" + argumentsCall(command, margin) + "\n" + margin + ";;\n";
}

} // namespace

std::string zshCompletion(const Arguments& program)
{
    const auto top = wordsOf(program);
    const auto commands = commandsOf(program);
    std::string script = beginning + argumentsCall(top, "  ") + " \\\n" + commandsBeginning;
    for (const auto& command : commands)
        script += "      '" + escaped(command.name) + ":" + escaped(command.description) + "'\n";
    script += argumentsBeginning;
    for (const auto& command : commands)
        script += commandCase(command);
    return replaced(script + end, "PROGRAM", top.name);
}

} // namespace orv
