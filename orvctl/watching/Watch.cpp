#include "orvctl/watching/Watch.h"

#include "orvctl/watching/Figures.h"

#include <algorithm>
#include <utility>

namespace orv {

Watch::Watch(WatchFormat& watchFormat, std::vector<std::string> chosenNames, WatchOutlet watchOutlet)
    : format(watchFormat)
    , chosen(std::move(chosenNames))
    , outlet(std::move(watchOutlet))
    , unknown(chosen.begin(), chosen.end())
{
}

bool Watch::repliesArrived(const WatchedReplies& replies)
{
    isMissing = false;
    const bool hasReadings = !replies.thermal.empty() || !replies.bluetooth.empty();
    shown = {outlet.now(), replies.timing, chosenOf(replies.thermal), chosenOf(replies.bluetooth), chosen, hasReadings};
    if (hasReadings && !std::exchange(hasComplained, true))
        complainOfUnknown();
    const auto output = format.refreshed(shown);
    for (const auto& remark : output.remarks)
        outlet.complain(remark);
    return write(output.text);
}

bool Watch::nothingArrived(const Timing& timing)
{
    if (freshness(timing) == Freshness::fresh)
        return true;
    shown.at = outlet.now();
    shown.timing = timing;
    return write(format.aged(shown));
}

bool Watch::serviceMissing(const std::string& why)
{
    if (std::exchange(isMissing, true))
        return true;
    outlet.complain(why);
    return write(format.missing());
}

// Sorted by key: not every platform's replies are.
Dictionary Watch::chosenOf(const Dictionary& reply)
{
    std::vector<Member> entries;
    for (const auto& entry : reply) {
        const auto isMeant = [&](const std::string& name) {
            return isNamed(entry, name) && (unknown.erase(name), true);
        };
        if (chosen.empty() || std::ranges::count_if(chosen, isMeant) > 0)
            entries.push_back(entry);
    }
    std::ranges::sort(entries, {}, &Member::key);
    return Dictionary(std::move(entries));
}

void Watch::complainOfUnknown()
{
    for (const auto& name : unknown)
        outlet.complain("no sensor, fan or device is called \"" + name + "\"");
}

bool Watch::write(const std::string& text)
{
    const auto beginning = std::exchange(hasBegun, true) ? std::string() : format.beginning();
    return (beginning.empty() || outlet.write(beginning)) && (text.empty() || outlet.write(text));
}

} // namespace orv
