#include "orvctl/checking/Check.h"

#include "base/ReplacedFile.h"
#include "orvctl/collecting/SimulatedClient.h"
#include "orvctl/commands/Commands.h"
#include "orvctl/commands/ShowReply.h"
#include "orvctl/views/Age.h"
#include "orvctl/views/Terminal.h"

#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace orv {

namespace {

struct Options {
    std::optional<std::string> save, expect;
    std::vector<std::string> warnings, criticals; // "WHAT=N"
    SimulatedMoment moment;
};

CheckResult unknown(const std::string& why)
{
    return {PluginState::unknown, why, {}};
}

/// Why a text is no limit, or nothing.
std::string addLimits(std::vector<Limit>& limits, const std::vector<std::string>& texts, PluginState state)
{
    for (const auto& text : texts) {
        const auto limit = parseLimit(text, state);
        if (!limit)
            return "\"" + text + "\" is no limit such as TC0P=95";
        limits.push_back(*limit);
    }
    return {};
}

/// The plan of some options; otherwise `fault` is one line.
CheckPlan planOf(const Options& options, std::string& fault)
{
    CheckPlan plan;
    fault = addLimits(plan.limits, options.warnings, PluginState::warning);
    if (fault.empty())
        fault = addLimits(plan.limits, options.criticals, PluginState::critical);
    if (fault.empty() && options.expect)
        plan.expected = readBaseline(*options.expect, fault);
    return plan;
}

CheckResult saved(const std::string& path, const Dictionary& thermal, CheckResult result)
{
    const auto fault = replaceFile(path, baselineText(baselineOf(thermal)));
    if (!fault.empty())
        return unknown(fault);
    result.text += "; saved into " + path;
    return result;
}

CheckResult checkMac(const Options& options)
{
    std::string fault;
    const auto plan = planOf(options, fault);
    if (!fault.empty())
        return unknown(fault);
    const auto answer =
        options.moment.path ? askSimulatedMac(Request::thermal, options.moment) : askService(Request::thermal);
    const auto* thermal = answer.reply ? answer.reply->as<Dictionary>() : nullptr;
    if (!thermal)
        return unknown(answer.error);
    if (const auto age = answer.timing ? ageRemark(answer.timing->readings) : std::string(); !age.empty())
        return unknown("the readings are " + age);
    auto result = check(*thermal, plan);
    const bool isSaved = options.save && !thermal->empty();
    return isSaved ? saved(*options.save, *thermal, std::move(result)) : result;
}

int tell(const CheckResult& result)
{
    const int unknownStatus = static_cast<int>(PluginState::unknown);
    return print(pluginLine(result)) == 0 ? static_cast<int>(result.state) : unknownStatus;
}

// Whoever calls a plugin takes status 1 for a warning.
int checkWhateverHappens(const Options& options)
{
    try {
        return tell(checkMac(options));
    } catch (const std::exception& error) {
        return tell(unknown(error.what()));
    }
}

} // namespace

void addCheck(Arguments& program, Run& run)
{
    const auto options = std::make_shared<Options>();
    auto command = program.addCommand(checkCommand, "Check this Mac as a monitoring plugin does");
    const auto save =
        command.addOption("--save", options->save, "Write which sensors and fans there are").named("FILE");
    command.addOption("--expect", options->expect, "A sensor that this file has must be there")
        .named("FILE")
        .excludes(save);
    command.addOption("--warn", options->warnings, "A warning above this; may be repeated")
        .named("WHAT=N")
        .oneValueEach();
    command.addOption("--crit", options->criticals, "Critical above this; may be repeated")
        .named("WHAT=N")
        .oneValueEach();
    command.showExample("orvctl check --simulate machines/macbookpro-m1.json --warn cpu=95");
    addSimulationOptions(command, options->moment);
    command.whenAsked([=, &run] { run = [=] { return checkWhateverHappens(*options); }; });
}

int tellCheckMisused(const std::string& why)
{
    return tell(unknown(why));
}

} // namespace orv
