#include "orvctl/plotting/Plot.h"

#include "orvctl/collecting/RecordedReadings.h"
#include "orvctl/commands/Commands.h"
#include "orvctl/commands/Duration.h"
#include "orvctl/plotting/CSVPlot.h"
#include "orvctl/plotting/PlotSVG.h"
#include "orvctl/plotting/WatchCSV.h"
#include "orvctl/views/Interruption.h"
#include "orvctl/views/Printable.h"
#include "orvctl/views/Progress.h"
#include "orvctl/views/Terminal.h"
#include "orvctl/watching/WallTime.h"
#include "recording/RecordingOutput.h"

#include <cmath>
#include <memory>
#include <optional>
#include <string>

namespace orv {

namespace {

struct Options {
    std::string path;
    std::string output;
    PlotPlan plan;
    bool replaces = false;
};

constexpr double refreshInterval = 5;

/// Plots a recording while it is played.
class RecordingPlotter final : public RecordedReadingsReader {
public:
    explicit RecordingPlotter(const PlotPlan& asked)
        : plan(asked)
        , progress(true)
    {
    }

    std::string opened(const std::string& machine, double length) override
    {
        if (length <= 0)
            return "holds one moment: a plot needs a recording (orvctl record --for 10m)";
        // What changed last is seen by the next refresh.
        std::string fault;
        const auto range = rangeOf(plan, std::ceil(length / refreshInterval) * refreshInterval, std::nullopt, fault);
        if (range)
            plot = std::make_unique<Plot>(*range, std::nullopt, plan.chosen);
        name = machine;
        return fault;
    }

    bool heard(const WatchedReplies& replies, double at) override
    {
        progress.show(at, plot->range.to);
        if (replies.timing->isAsleep) {
            sleepsFrom = at;
        } else {
            wake(at);
            plot->add(at, figuresOf({{}, std::nullopt, replies.thermal, replies.bluetooth, {}, true}));
        }
        return at < plot->range.to && !interruption.hasCome();
    }

    void ended() { wake(plot->range.to); }

    bool isInterrupted() const { return interruption.hasCome(); }

    std::unique_ptr<Plot> plot;
    std::string name;

private:
    void wake(double at)
    {
        if (!sleepsFrom)
            return;
        plot->addSleep({*sleepsFrom, at});
        plot->breakOff();
        sleepsFrom.reset();
    }

    const PlotPlan& plan;
    const Interruption interruption;
    Progress progress;
    std::optional<double> sleepsFrom;
};

int write(const Options& options, const Plot& plot, const std::string& heading)
{
    for (const auto& name : plot.unknown())
        complain("no sensor, fan or device is called \"" + name + "\"", 0);
    if (plot.series.empty())
        return complain(options.path + ": there is nothing to plot", 1);
    RecordingOutput output(
        options.output, options.output == "-" ? WritingMode::toStandardOutput : WritingMode::atOnce, options.replaces);
    if (output.open())
        output.write(plotSVG(plot, heading));
    output.finish();
    return output.fault().empty() ? 0 : complain(output.fault(), output.isInTheWay() ? 2 : 1);
}

std::string fileName(const std::string& path)
{
    return printable(path.substr(path.rfind('/') + 1));
}

int plotRecording(const Options& options)
{
    RecordingPlotter plotter(options.plan);
    std::string fault;
    if (!readRecording(options.path, plotter, fault))
        return complain(fault, 2);
    if (plotter.isInterrupted())
        return 0;
    plotter.ended();
    return write(options, *plotter.plot, plotter.name.empty() ? fileName(options.path) : printable(plotter.name));
}

int plot(const Options& options)
{
    if (!WatchCSV::isOne(options.path))
        return plotRecording(options);
    std::string fault;
    const auto plot = plotOfCSV(options.path, options.plan, fault);
    return plot ? write(options, *plot, fileName(options.path)) : complain(fault, 2);
}

std::optional<PlotMoment> parseMoment(const std::string& text)
{
    if (const auto time = parseWallTime(text))
        return *time;
    const auto seconds = text == "0" ? 0.0 : parseDuration(text);
    return seconds ? std::optional<PlotMoment>(*seconds) : std::nullopt;
}

void addPlotMoment(
    Arguments& command, const std::string& name, std::optional<PlotMoment>& moment, const std::string& does)
{
    const auto take = [&moment](const std::string& text) {
        moment = parseMoment(text);
        return moment.has_value();
    };
    const auto fault = [](const std::string& text) -> std::string {
        return parseMoment(text) ? "" : "not a time such as 90, 10m or 2026-11-21T22:10Z";
    };
    command.addOption(name, take, does).named("T").checkedBy(fault);
}

} // namespace

void addPlot(Arguments& program, Run& run)
{
    const auto options = std::make_shared<Options>();
    auto command = program.addCommand("plot", "Draw a recording, or a csv of watch, as an SVG picture");
    command.addOption("FILE", options->path, "What to draw").required();
    command.addOption("-o,--output", options->output, "Where to write; - for standard output").named("FILE").required();
    command.addOption("--only", options->plan.chosen, "Draw what has this key or title; may be repeated")
        .named("KEY|TITLE")
        .oneValueEach();
    addPlotMoment(command, "--from", options->plan.from, "From here on: 90, 10m, or a time of day of a csv");
    addPlotMoment(command, "--to", options->plan.to, "Up to here");
    command.addFlag("--force", options->replaces, "Replace a file that is there");
    command.showExample("orvctl plot day.json -o temps.svg");
    command.whenAsked([=, &run] { run = [=] { return plot(*options); }; });
}

} // namespace orv
