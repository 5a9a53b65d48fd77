#include "orvctl/collecting/SimulatedInspection.h"
#include "orvctl/commands/Commands.h"
#include "orvctl/commands/ShowReply.h"
#include "orvctl/views/ExplanationJSON.h"
#include "orvctl/views/ExplanationText.h"
#include "orvctl/views/Terminal.h"

#include "readings/Text.h"
#include "json/JSONWriter.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace orv {

namespace {

struct Options {
    std::vector<std::string> subjects;
    bool missing = false;
    bool shown = false;
    bool json = false;
    SimulatedMoment moment;
};

Filter filterOf(const Options& options)
{
    if (options.missing)
        return Filter::missing;
    return options.shown ? Filter::shown : Filter::all;
}

std::vector<Answer> answersTo(const Options& options, const Explanation& explanation, const Inspection& inspection)
{
    std::vector<Answer> answers;
    for (const auto& subject : options.subjects)
        answers.push_back(answerFor(repairedUTF8(subject), explanation, inspection));
    return answers;
}

int explainMac(const Options& options)
{
    auto [mac, error] =
        options.moment.path ? inspectSimulatedMac(options.moment, options.subjects) : inspectThisMac(options.subjects);
    if (!mac)
        return complain(error, options.moment.path ? 2 : 1);
    auto explanation = explain(mac->inspection);
    auto& obstacles = explanation.machine.obstacles;
    obstacles.insert(obstacles.begin(), mac->obstacles.begin(), mac->obstacles.end());
    const auto answers = answersTo(options, explanation, mac->inspection);
    const auto filter = filterOf(options);
    const auto written = options.json
        ? writeJSON(explanationDocument(explanation, answers, filter), KeyOrder::asListed) + '\n'
        : explanationText(explanation, answers, filter, terminalColour());
    const int status = print(written);
    return std::ranges::all_of(answers, &Answer::isFound) ? status : 1;
}

} // namespace

void addExplain(Arguments& program, Run& run)
{
    auto command = program.addCommand("explain", "Why each sensor, device and watch is shown or missing");
    const auto options = std::make_shared<Options>();
    command.addOption("WHAT", options->subjects, "Keys, titles, devices, addresses or parts of them")
        .suggests({"temperatures", "fans", "hid", "bluetooth", "watch"})
        .withoutValueInHelp();
    const auto missing = command.addFlag("--missing", options->missing, "Only what is missing");
    command.addFlag("--shown", options->shown, "Only what is shown").excludes(missing);
    command.addFlag("--json", options->json, "Print the explanation as JSON (schema orv.explain/1)");
    addSimulationOptions(command, options->moment);
    command.showExample("orvctl explain gpu mouse");
    command.whenAsked([=, &run] { run = [=] { return explainMac(*options); }; });
}

} // namespace orv
