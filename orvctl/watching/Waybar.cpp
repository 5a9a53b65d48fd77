#include "orvctl/views/Age.h"
#include "orvctl/watching/BarItems.h"
#include "orvctl/watching/WatchFormat.h"
#include "json/JSONWriter.h"

#include <string_view>

namespace orv {

namespace {

// Texts are Pango markup there.
std::string escaped(std::string_view text)
{
    std::string result;
    for (const char character : text) {
        switch (character) {
        case '&':
            result += "&amp;";
            break;
        case '<':
            result += "&lt;";
            break;
        case '>':
            result += "&gt;";
            break;
        default:
            result += character;
        }
    }
    return result;
}

std::string line(std::string_view text, std::string_view tooltip, std::string_view state, const Moment& moment)
{
    Dictionary output;
    output.set("text", escaped(text));
    output.set("alt", std::string(state));
    output.set("tooltip", escaped(tooltip));
    output.set("class", std::string(state));
    if (const auto level = lowestBattery(moment))
        output.set("percentage", *level);
    return writeJSON(output, KeyOrder::asListed) + '\n';
}

/// The lines that a custom module of waybar takes from a program that runs on.
class Waybar final : public WatchFormat {
public:
    WatchOutput refreshed(const Moment& moment) override { return {aged(moment)}; }

    std::string aged(const Moment& moment) override
    {
        std::string text;
        std::string tooltip;
        for (const auto& item : barItems(moment)) {
            text += (text.empty() ? "" : "  ") + barText(item, item.number);
            tooltip += (tooltip.empty() ? "" : "\n") + item.name + ": " + item.number;
        }
        const auto remark = moment.timing ? ageRemark(*moment.timing) : std::string();
        if (!remark.empty())
            tooltip += (tooltip.empty() ? "" : "\n") + remark;
        const bool isStale = moment.timing && freshness(*moment.timing) == Freshness::stale;
        return line(text.empty() ? text : text + barAge(moment), tooltip, isStale ? "stale" : "ok", moment);
    }

    std::string missing() override { return line("", "The service does not run.", "off", {}); }
};

} // namespace

std::unique_ptr<WatchFormat> makeWaybar()
{
    return std::make_unique<Waybar>();
}

} // namespace orv
