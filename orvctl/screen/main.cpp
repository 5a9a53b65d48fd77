#include "orvctl/CommandLine.h"
#include "orvctl/screen/RecordingFeed.h"
#include "orvctl/screen/ServiceFeed.h"
#include "orvctl/screen/Session.h"
#include "orvctl/screen/TerminalRefusal.h"
#include "orvctl/views/Printable.h"
#include "orvctl/views/Terminal.h"

#include <clocale>
#include <exception>
#include <optional>
#include <string>

namespace {

using namespace orv;

struct Options {
    SimulatedMoment moment;
    std::string machine;
    std::string orvctl;
    bool isASCII = false;
};

/// Shows a feed until it ends; the exit status.
int show(Feed& feed, const Options& options, const std::string& machine)
{
    Top top({printable(machine), options.isASCII || !isUTF8Terminal(), options.moment.path.has_value()});
    Session(top, feed, options.orvctl, terminalColour() == Colour::on).run();
    return feed.fault.empty() ? 0 : complain(feed.fault, 1);
}

int top(const Options& options)
{
    std::setlocale(LC_CTYPE, "");
    if (const auto refusal = terminalRefusal(); !refusal.empty())
        return complain(refusal, 2);
    if (!options.moment.path) {
        ServiceFeed feed;
        return show(feed, options, options.machine);
    }
    std::string fault;
    const auto feed = RecordingFeed::open(options.moment, fault);
    return feed ? show(*feed, options, feed->machine()) : complain(fault, 2);
}

} // namespace

// Started by orvctl, which has read the arguments and knows this machine.
int main(int argumentCount, char** arguments)
{
    CLI::App application("The full-screen view of orvctl top.", "orvctl");
    Options options;
    application.add_option("--simulate", options.moment.path);
    application.add_option("--at", options.moment.at);
    application.add_option("--machine", options.machine);
    application.add_option("--orvctl", options.orvctl);
    application.add_flag("--ascii", options.isASCII);
    if (const auto status = parseCommandLine(application, argumentCount, arguments))
        return *status;
    try {
        return top(options);
    } catch (const std::exception& error) {
        return complain(error.what(), 1);
    }
}
