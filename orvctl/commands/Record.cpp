#include "orvctl/collecting/EnterSimulation.h"
#include "orvctl/collecting/RecordSimulatedMac.h"
#include "orvctl/commands/Commands.h"
#include "orvctl/commands/Duration.h"
#include "orvctl/views/Interruption.h"
#include "orvctl/views/Progress.h"
#include "orvctl/views/Terminal.h"
#include "recording/RecordingOutput.h"
#include "recording/ThisMac.h"
#include "thermal/ZpSystemInfo.h"

#include <unistd.h>

#include <cstdio>
#include <ctime>
#include <memory>
#include <optional>
#include <string>

namespace orv {

namespace {

struct Options {
    std::optional<std::string> machinePath;
    std::optional<std::string> path;
    std::optional<std::string> length;
    std::string interval = "5s";
    bool replaces = false;
};

// Named by what is recorded, and when.
std::string defaultName()
{
    auto name = ZpSystemInfo::modelIdentifier();
    for (auto& character : name) {
        const bool isPlain = (character >= '0' && character <= '9') || (character >= 'A' && character <= 'Z')
            || (character >= 'a' && character <= 'z') || character == ',' || character == '.' || character == '_';
        if (!isPlain)
            character = '-';
    }
    const auto now = std::time(nullptr);
    std::tm day{};
    localtime_r(&now, &day);
    char date[16];
    std::strftime(date, sizeof(date), "%Y-%m-%d", &day);
    return name + "-" + date + ".json";
}

/// Opens its file with the first text, when the machine is known.
class LateOutput {
public:
    LateOutput(const Options& given, bool isSeries)
        : options(given)
        , mode(options.path == "-" ? WritingMode::toStandardOutput
                  : isSeries       ? WritingMode::lineByLine
                                   : WritingMode::atOnce)
    {
        if (options.path)
            open(*options.path);
    }

    void write(const std::string& text)
    {
        if (!output)
            open(defaultName());
        if (hasFailed())
            return;
        output->write(text);
    }

    bool hasFailed() const { return output && !output->fault().empty(); }
    bool isOnTerminal() const { return mode == WritingMode::toStandardOutput && isatty(STDOUT_FILENO); }
    bool isRead() { return !output || output->isRead(); }
    int finish(const std::string& summary)
    {
        if (output)
            output->finish();
        if (hasFailed() || !output)
            return complain(output ? output->fault() : "nothing was recorded", output && output->isInTheWay() ? 2 : 1);
        std::fprintf(stderr, "orvctl: %s: %s\n",
            mode == WritingMode::toStandardOutput ? "standard output" : output->path().c_str(), summary.c_str());
        return 0;
    }

private:
    void open(const std::string& path)
    {
        output = std::make_unique<RecordingOutput>(path, mode, options.replaces);
        output->open();
    }

    const Options& options;
    const WritingMode mode;
    std::unique_ptr<RecordingOutput> output;
};

// What was kept, or nothing and a fault of the machine file.
std::optional<std::string> recordInto(
    LateOutput& output, const std::optional<std::string>& machinePath, RecordingPlan plan, std::string& fault)
{
    const Interruption interruption;
    Progress progress(!output.isOnTerminal());
    plan.shouldStop = [&](double reached) {
        progress.show(reached, plan.length.value_or(0));
        return output.hasFailed() || !output.isRead() || interruption.hasCome();
    };
    const auto write = [&](const std::string& text) { output.write(text); };
    if (machinePath)
        return recordSimulatedMac(*machinePath, write, plan, fault);
    return recordThisMac(write, plan);
}

int record(const Options& options)
{
    const auto length = options.length ? parseDuration(*options.length) : std::nullopt;
    const auto interval = parseDuration(options.interval);
    if ((options.length && !length) || !interval)
        return complain(
            std::string(interval ? "--for" : "--every") + ": not a time such as 5s, 10m or 24h, at least 0.1s", 2);
    if (const auto failure = options.machinePath ? enterSimulation() : std::nullopt)
        return complain(*failure, 2);
    LateOutput output(options, length.has_value());
    if (output.hasFailed())
        return output.finish({});
    std::string fault;
    const auto summary = recordInto(output, options.machinePath, {length, *interval, nullptr}, fault);
    return summary ? output.finish(*summary) : complain(fault, 2);
}

} // namespace

void addRecord(Arguments& program, Run& run)
{
    const auto options = std::make_shared<Options>();
    auto command = program.addCommand("record", "Write this Mac's sensors into a file, to be replayed");
    command.addOption("--simulate", options->machinePath, "Record the Mac of a machine file or recording")
        .named("FILE");
    command.addOption("-o,--output", options->path, "Where to write; - for standard output").named("FILE");
    command.addOption("--for", options->length, "For so long (30m, 24h) instead of one moment").named("TIME");
    command.addOption("--every", options->interval, "At this interval (5s)").named("TIME");
    command.addFlag("--force", options->replaces, "Replace a file that is there");
    command.showExample("orvctl record --for 24h -o day.json");
    command.whenAsked([=, &run] { run = [=] { return record(*options); }; });
}

} // namespace orv
