#include "orvctl/completion/Completion.h"

#include <utility>

namespace orv {

namespace {

constexpr const char* beginning = R"(# Completion for PROGRAM(1) in bash.

_PROGRAM()
{
    local word=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} command= words=
    COMPREPLY=()
    # "=" is a word of its own.
    [[ $word == = ]] && word=
    [[ $previous == = ]] && previous=${COMP_WORDS[COMP_CWORD - 2]}
    ((COMP_CWORD > 1)) && command=${COMP_WORDS[1]}
    case "$command $previous" in
)";

constexpr const char* files = R"(compopt -o filenames
        mapfile -t COMPREPLY < <(compgen -f -- "$word")
        return ;;
)";

constexpr const char* end = R"(    esac
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
}

complete -F _PROGRAM PROGRAM
)";

std::string valueOf(const CommandWords& command, const OptionWords& option)
{
    std::string places;
    for (const auto& name : option.names)
        places += (places.empty() ? "" : " | ") + ("\"" + command.name + " " + name + "\"");
    switch (option.value.what) {
    case Takes::nothing:
        return {};
    case Takes::text:
        return "    " + places + ") return ;;\n";
    case Takes::file:
        return "    " + places + ")\n        " + files;
    case Takes::oneOf:
        return "    " + places + ") words=\"" + joined(option.value.words) + "\" ;;\n";
    }
    return {};
}

std::string wordsAfter(const CommandWords& command)
{
    auto words = optionNames(command);
    const auto& argument = command.arguments;
    words.insert(words.end(), argument.words.begin(), argument.words.end());
    const auto alsoFiles = argument.what == Takes::file ? "compopt -o default; " : "";
    return "    \"" + command.name + " \"*) " + alsoFiles + "words=\"" + joined(words) + "\" ;;\n";
}

} // namespace

std::string bashCompletion(const Arguments& program)
{
    auto top = wordsOf(program);
    const auto name = std::exchange(top.name, {});
    const auto commands = commandsOf(program);
    top.arguments.words = commandNames(commands);
    std::string script = beginning;
    for (const auto& command : commands) {
        for (const auto& option : command.options)
            script += valueOf(command, option);
        script += wordsAfter(command);
    }
    script += wordsAfter(top) + end;
    return replaced(script, "PROGRAM", name);
}

} // namespace orv
