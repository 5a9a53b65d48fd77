#include "orvctl/watching/BarItems.h"
#include "orvctl/watching/WatchFormat.h"
#include "json/JSONWriter.h"

#include <utility>

namespace orv {

namespace {

Value block(std::string fullText, std::string shortText, std::string instance, std::string widest)
{
    Dictionary block;
    block.set("full_text", std::move(fullText));
    block.set("short_text", std::move(shortText));
    block.set("name", std::string("orv"));
    block.set("instance", std::move(instance));
    block.set("min_width", std::move(widest));
    return block;
}

/// i3bar's protocol: an array without an end, each of whose items is a line.
class I3bar final : public WatchFormat {
public:
    std::string beginning() override { return "{\"version\":1}\n[\n"; }

    WatchOutput refreshed(const Moment& moment) override { return {aged(moment)}; }

    std::string aged(const Moment& moment) override
    {
        const auto age = barAge(moment);
        Array blocks;
        for (const auto& item : barItems(moment))
            blocks.push_back(
                block(barText(item, item.number) + age, item.number + age, item.key, barText(item, item.widest)));
        return line(std::move(blocks));
    }

    // An empty text hides the block.
    std::string missing() override { return line({block("", "", "off", "")}); }

private:
    std::string line(Array blocks)
    {
        const auto separator = std::exchange(isFirst, false) ? "" : ",";
        return separator + writeJSON(std::move(blocks), KeyOrder::asListed) + '\n';
    }

    bool isFirst = true;
};

} // namespace

std::unique_ptr<WatchFormat> makeI3bar()
{
    return std::make_unique<I3bar>();
}

} // namespace orv
