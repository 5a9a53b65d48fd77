#include "orvctl/arguments/Arguments.h"

#include <CLI/CLI.hpp>

namespace orv {

namespace {

// The parser's own functions are templates of what a value is read into.
template <typename Value> Option add(CLI::App& parser, const std::string& names, Value& value, const std::string& does)
{
    return Option(*parser.add_option(names, value, does));
}

} // namespace

Option& Option::named(const std::string& value)
{
    option.type_name(value);
    return *this;
}

Option& Option::withoutValueInHelp()
{
    option.option_text(" ");
    return *this;
}

Option& Option::required()
{
    option.required();
    return *this;
}

Option& Option::oneValueEach()
{
    option.allow_extra_args(false);
    return *this;
}

Option& Option::needs(const Option& other)
{
    option.needs(&other.option);
    return *this;
}

Option& Option::excludes(const Option& other)
{
    option.excludes(&other.option);
    return *this;
}

Option& Option::oneOf(const std::vector<std::string>& words)
{
    option.check(CLI::IsMember(words));
    return *this;
}

Option& Option::suggests(const std::vector<std::string>& words)
{
    const auto takeAny = [](const std::string&) { return std::string(); };
    option.check(CLI::Validator(takeAny, "{" + CLI::detail::join(words, ",") + "}"));
    return *this;
}

Option& Option::checkedBy(const Fault& fault)
{
    option.check(fault);
    return *this;
}

Option& Option::inRange(double least, double most, const std::string& fault)
{
    return checkedBy([=](const std::string& text) -> std::string {
        double number = 0;
        return CLI::detail::lexical_cast(text, number) && number >= least && number <= most ? "" : fault;
    });
}

Arguments Arguments::addCommand(const std::string& name, const std::string& does)
{
    return Arguments(*parser->add_subcommand(name, does));
}

Option Arguments::addFlag(const std::string& names, bool& isGiven, const std::string& does)
{
    return Option(*parser->add_flag(names, isGiven, does));
}

Option Arguments::addOption(const std::string& names, std::string& value, const std::string& does)
{
    return add(*parser, names, value, does);
}

Option Arguments::addOption(const std::string& names, std::optional<std::string>& value, const std::string& does)
{
    return add(*parser, names, value, does);
}

Option Arguments::addOption(const std::string& names, std::vector<std::string>& values, const std::string& does)
{
    return add(*parser, names, values, does);
}

Option Arguments::addOption(const std::string& names, double& value, const std::string& does)
{
    return add(*parser, names, value, does);
}

Option Arguments::addOption(const std::string& names, std::optional<double>& value, const std::string& does)
{
    return add(*parser, names, value, does);
}

Option Arguments::addOption(
    const std::string& names, const std::function<bool(const std::string&)>& take, const std::string& does)
{
    const CLI::callback_t takeFirst = [take](const CLI::results_t& texts) { return take(texts.front()); };
    return Option(*parser->add_option(names, takeFirst, does));
}

void Arguments::showExample(const std::string& text)
{
    parser->footer("Example: " + text);
}

void Arguments::whenAsked(const std::function<void()>& action)
{
    parser->callback(action);
}

} // namespace orv
