#include "orvctl/metrics/Metrics.h"

#include "base/ReplacedFile.h"
#include "orvctl/collecting/SimulatedClient.h"
#include "orvctl/commands/Commands.h"
#include "orvctl/commands/ShowReply.h"
#include "orvctl/views/Terminal.h"
#include "service/Request.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace orv {

namespace {

struct Options {
    std::optional<std::string> path; // none or "-": standard output
    bool addresses = false;
    SimulatedMoment moment;

    bool isPrinted() const { return !path || *path == "-"; }
};

int write(const Options& options, const std::string& text)
{
    if (options.isPrinted())
        return print(text);
    const auto fault = replaceFile(*options.path, text);
    return fault.empty() ? 0 : complain(fault, 1);
}

// A file that nobody replaced would go on showing the last readings.
int giveUp(const Options& options, const std::string& error)
{
    if (options.moment.path)
        return complain(error, 2);
    const auto fault = options.isPrinted() ? "" : replaceFile(*options.path, metricsWithoutReadings());
    return complain(fault.empty() ? error : error + "; " + fault, 1);
}

Dictionary replyOf(const std::vector<ServiceAnswer>& answers, Request request)
{
    const auto* reply = answers[static_cast<std::size_t>(request)].reply->as<Dictionary>();
    return reply ? *reply : Dictionary();
}

int writeMetrics(const Options& options)
{
    const auto answers = options.moment.path ? askSimulatedMacForAll(options.moment) : askServiceForAll();
    const auto failed = std::ranges::find_if(answers, [](const auto& answer) { return !answer.reply; });
    if (failed != answers.end())
        return giveUp(options, failed->error);
    const MeasuredMac mac{replyOf(answers, Request::thermal), replyOf(answers, Request::bluetooth),
        answers.front().timing, std::chrono::system_clock::now()};
    return write(options, metricsOf(mac, options.addresses ? DeviceNaming::keys : DeviceNaming::standIns));
}

} // namespace

void addMetrics(Arguments& program, Run& run)
{
    const auto options = std::make_shared<Options>();
    auto command = program.addCommand("metrics", "All readings as Prometheus and OpenMetrics read them");
    command.addOption("-o,--output", options->path, "Replace this file; - for standard output").named("FILE");
    command.addFlag("--addresses", options->addresses, "Name devices by their addresses, not by stand-ins");
    command.showExample("orvctl metrics --simulate machines/macbookpro-m1.json");
    addSimulationOptions(command, options->moment);
    command.whenAsked([=, &run] { run = [=] { return writeMetrics(*options); }; });
}

} // namespace orv
