#pragma once

#include <CLI/CLI.hpp>

#include <string>
#include <vector>

namespace orv {

/// What an option or a command takes after its name.
enum class Takes { nothing, text, file, oneOf };

struct Taken {
    Takes what = Takes::nothing;
    std::string name; // "FILE"
    std::vector<std::string> words; // of oneOf
    bool isRepeated = false;
};

struct OptionWords {
    std::vector<std::string> names; // "-o", "--output"
    std::string description;
    Taken value;
};

struct CommandWords {
    std::string name;
    std::string description;
    std::vector<OptionWords> options;
    Taken arguments; // those without an option
};

/// What may be written after a program's name or a command's: its options, and whatever it takes besides. A set of
/// words is one that the option checks for, or that `suggest` gave it.
CommandWords wordsOf(const CLI::App& command);

/// Every command of a program, in its order.
std::vector<CommandWords> commandsOf(const CLI::App& program);

/// Lets completion offer these words, while any other is taken too.
CLI::Validator suggest(const std::vector<std::string>& words);

/// With a blank between.
std::string joined(const std::vector<std::string>& words);

/// The longest name of each option of a command; the names of all commands.
std::vector<std::string> optionNames(const CommandWords& command);
std::vector<std::string> commandNames(const std::vector<CommandWords>& commands);

} // namespace orv
