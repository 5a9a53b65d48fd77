#include "orvctl/views/Age.h"
#include "orvctl/views/Table.h"
#include "orvctl/watching/WallTime.h"
#include "orvctl/watching/WatchFormat.h"

#include <unistd.h>

namespace orv {

namespace {

constexpr const char* clearScreen = "\x1b[H\x1b[2J";

/// Tables one after the other; on a terminal each in the place of the last one.
class WatchTable final : public WatchFormat {
public:
    WatchOutput refreshed(const Moment& moment) override { return {shown(moment)}; }

    // Where earlier tables stay, one that says nothing new is of no use.
    std::string aged(const Moment& moment) override { return isTerminal ? shown(moment) : std::string(); }

    std::string missing() override
    {
        return isTerminal ? std::string(clearScreen) + "The service does not run.\n" : std::string();
    }

private:
    std::string shown(const Moment& moment) const
    {
        const auto colour = terminalColour();
        const auto remark = moment.timing ? ageRemark(*moment.timing) : std::string();
        auto text = (isTerminal ? clearScreen : "") + rfc3339(moment.at) + (remark.empty() ? "" : ": " + remark) + '\n';
        if (moment.chosen.empty() || !moment.thermal.empty())
            text += thermalTable(moment.thermal, colour);
        if (moment.chosen.empty() || !moment.bluetooth.empty())
            text += bluetoothTable(moment.bluetooth, colour);
        return text + (isTerminal ? "" : "\n");
    }

    const bool isTerminal = isatty(STDOUT_FILENO) != 0;
};

} // namespace

std::unique_ptr<WatchFormat> makeWatchTable()
{
    return std::make_unique<WatchTable>();
}

} // namespace orv
