#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
} // namespace CLI

// What a program and its commands take, over the library that parses arguments. Only this room reads its header, which
// costs each file that does as much as all others together.

namespace orv {

/// An option, a flag or what stands without one. Belongs to its command.
class Option {
public:
    explicit Option(CLI::Option& declared)
        : option(declared)
    {
    }

    /// What --help calls the value.
    Option& named(const std::string& value);
    Option& withoutValueInHelp();
    Option& required();
    /// Repeated, it takes one value each time.
    Option& oneValueEach();
    Option& needs(const Option& other);
    Option& excludes(const Option& other);

    /// Takes no other word; completion offers these.
    Option& oneOf(const std::vector<std::string>& words);
    /// Completion offers these words, while any other is taken too.
    Option& suggests(const std::vector<std::string>& words);

    /// Why a value cannot be used; empty for one that can.
    using Fault = std::function<std::string(const std::string& value)>;
    Option& checkedBy(const Fault& fault);
    /// Takes numbers from `least` to `most`, and for others says `fault`.
    Option& inRange(double least, double most, const std::string& fault);

private:
    CLI::Option& option;
};

/// A command, or the program with what it takes before any. What options are read into outlives it.
class Arguments {
public:
    explicit Arguments(CLI::App& declared)
        : parser(&declared)
    {
    }

    Arguments addCommand(const std::string& name, const std::string& does);

    /// Names are "-o,--output", or "FILE" for what stands without an option.
    Option addFlag(const std::string& names, bool& isGiven, const std::string& does);
    Option addOption(const std::string& names, std::string& value, const std::string& does);
    Option addOption(const std::string& names, std::optional<std::string>& value, const std::string& does);
    Option addOption(const std::string& names, std::vector<std::string>& values, const std::string& does);
    Option addOption(const std::string& names, double& value, const std::string& does);
    Option addOption(const std::string& names, std::optional<double>& value, const std::string& does);
    Option addOption(
        const std::string& names, const std::function<bool(const std::string&)>& take, const std::string& does);

    /// What --help ends with.
    void showExample(const std::string& text);
    /// What is done when the command is asked for, once all arguments were read.
    void whenAsked(const std::function<void()>& action);

    const CLI::App& declared() const { return *parser; }

protected:
    CLI::App* parser;
};

} // namespace orv
