#include "orvctl/arguments/CommandWords.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <sstream>

namespace orv {

namespace {

// A type is "FILE", or, with what is checked, "FORMAT:{table,csv}".
Taken takenBy(const CLI::Option& option)
{
    if (option.get_items_expected_max() == 0)
        return {};
    const auto type = option.get_type_name();
    Taken taken{Takes::text, type.substr(0, type.find(':')), {}, option.get_expected_max() > 1};
    if (option.get_positional())
        taken.name = option.get_name(true);
    const auto begin = type.find('{');
    const auto end = type.find('}');
    if (begin != std::string::npos && end != std::string::npos) {
        taken.what = Takes::oneOf;
        taken.words = CLI::detail::split(type.substr(begin + 1, end - begin - 1), ',');
    } else if (taken.name == "FILE" || taken.name == "RECORDING") {
        taken.what = Takes::file;
    }
    return taken;
}

std::vector<std::string> namesOf(const CLI::Option& option)
{
    std::vector<std::string> names;
    for (const auto& letter : option.get_snames())
        names.push_back("-" + letter);
    for (const auto& name : option.get_lnames())
        names.push_back("--" + name);
    return names;
}

// Only the first sentence: the rest is the manual's.
std::string shortened(const std::string& description)
{
    return description.substr(0, description.find_first_of(";\n"));
}

CommandWords wordsOfParser(const CLI::App& command)
{
    CommandWords words{command.get_name(), shortened(command.get_description()), {}, {}};
    for (const auto* option : command.get_options()) {
        if (option->get_positional())
            words.arguments = takenBy(*option);
        else if (!option->get_group().empty())
            words.options.push_back({namesOf(*option), shortened(option->get_description()), takenBy(*option)});
    }
    return words;
}

} // namespace

CommandWords wordsOf(const Arguments& command)
{
    return wordsOfParser(command.declared());
}

std::vector<CommandWords> commandsOf(const Arguments& program)
{
    std::vector<CommandWords> commands;
    for (const auto* command : program.declared().get_subcommands({}))
        commands.push_back(wordsOfParser(*command));
    return commands;
}

std::string replaced(const std::string& text, const std::string& part, const std::string& by)
{
    return CLI::detail::find_and_replace(text, part, by);
}

std::string joined(const std::vector<std::string>& words)
{
    return CLI::detail::join(words, " ");
}

std::vector<std::string> optionNames(const CommandWords& command)
{
    std::vector<std::string> names;
    for (const auto& option : command.options)
        names.push_back(option.names.back());
    return names;
}

std::vector<std::string> commandNames(const std::vector<CommandWords>& commands)
{
    std::vector<std::string> names;
    for (const auto& command : commands)
        names.push_back(command.name);
    return names;
}

} // namespace orv
