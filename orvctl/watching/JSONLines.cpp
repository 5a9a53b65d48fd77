#include "orvctl/watching/WallTime.h"
#include "orvctl/watching/WatchFormat.h"
#include "json/JSONWriter.h"

#include <fmt/core.h>

#include <chrono>

namespace orv {

namespace {

// Seconds to the millisecond, rounded up: an age is never too small.
Value ageValue(const std::optional<Timing>& timing)
{
    if (!timing)
        return {};
    const auto age = std::chrono::ceil<std::chrono::milliseconds>(timing->age);
    return static_cast<double>(age.count()) / 1000;
}

/// packaging/schemas/orv.reading-1.json describes a line.
class JSONLines final : public WatchFormat {
public:
    WatchOutput refreshed(const Moment& moment) override
    {
        const auto json = [](const Value& value) { return writeJSON(value, KeyOrder::sorted); };
        return {fmt::format(R"({{"schema": "orv.reading/1", "at": "{}", "age": {}, "thermal": {}, "bluetooth": {}}})"
                            "\n",
            rfc3339(moment.at), json(ageValue(moment.timing)), json(moment.thermal), json(moment.bluetooth))};
    }
};

} // namespace

std::unique_ptr<WatchFormat> makeJSONLines()
{
    return std::make_unique<JSONLines>();
}

} // namespace orv
