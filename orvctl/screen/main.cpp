#include "orvctl/arguments/Program.h"
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
    Program program("orvctl", "The full-screen view of orvctl top.");
    Options options;
    program.addOption("--simulate", options.moment.path, "");
    program.addOption("--at", options.moment.at, "");
    program.addOption("--machine", options.machine, "");
    program.addOption("--orvctl", options.orvctl, "");
    program.addFlag("--ascii", options.isASCII, "");
    const auto tellMisused = [](const std::string&, const std::string& why) { return complain(why, 2); };
    if (const auto status = program.parse(argumentCount, arguments, tellMisused))
        return *status;
    try {
        return top(options);
    } catch (const std::exception& error) {
        return complain(error.what(), 1);
    }
}
