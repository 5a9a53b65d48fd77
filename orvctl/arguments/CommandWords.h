#pragma once

#include "orvctl/arguments/Arguments.h"

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
/// words is one that the option takes or suggests.
CommandWords wordsOf(const Arguments& command);

/// Every command of a program, in its order.
std::vector<CommandWords> commandsOf(const Arguments& program);

/// Every `part` of a text replaced.
std::string replaced(const std::string& text, const std::string& part, const std::string& by);

/// With a blank between.
std::string joined(const std::vector<std::string>& words);

/// The longest name of each option of a command; the names of all commands.
std::vector<std::string> optionNames(const CommandWords& command);
std::vector<std::string> commandNames(const std::vector<CommandWords>& commands);

} // namespace orv
