#include "thermal/ZpM1IOHIDSensors.h"

#include "tests/support/TestMac.h"

#include <gtest/gtest.h>

using namespace orv;

namespace {

/// Services with the locations given, all of which read 40 degrees; it notes which events are asked for.
class RecordingHIDs final : public HIDEventSystem {
public:
    explicit RecordingHIDs(std::vector<Value> locationIDs)
        : locations(std::move(locationIDs))
    {
    }

    bool forEachService(std::int32_t page, std::int32_t usage, const std::function<void(HIDService&)>& visit) override
    {
        EXPECT_EQ(page, 0xff00);
        EXPECT_EQ(usage, 5);
        for (const auto& location : locations) {
            Service service(*this, location);
            visit(service);
        }
        return hasClient;
    }

    std::vector<Value> locations;
    bool hasClient = true;
    int events = 0;

private:
    struct Service final : HIDService {
        Service(RecordingHIDs& hids, Value locationID)
            : owner(hids)
            , location(std::move(locationID))
        {
        }
        Value locationID() override { return location; }
        std::optional<double> eventValue(std::int32_t eventType, std::int32_t field) override
        {
            EXPECT_EQ(eventType, 15);
            EXPECT_EQ(field, 0xf0000);
            return 40.0 + ++owner.events;
        }

        RecordingHIDs& owner;
        Value location;
    };
};

} // namespace

TEST(HIDSensors, AreAskedForAnEventOnlyWithAUsableLocation)
{
    RecordingHIDs hids({Value(), std::string("Tp0i"), std::int64_t{0}, std::int64_t{-5}, 1.5, true,
        std::uint64_t{0x8000000000000000}, std::int64_t{0x54703069}, 1416638825.0, std::int64_t{0x154703069}});
    const auto readings = ZpM1IOHIDSensors::hidReadings(hids, 0xff00, 5, 15);
    EXPECT_EQ(readings, (std::map<std::string, double>{{"Tp0i", 43.0}, {"Tp1i", 42.0}}));
    EXPECT_EQ(hids.events, 3);
}

TEST(HIDSensors, AreKeptWhenTheCatalogueNamesThemAndTheyAreWarm)
{
    TestMac mac(machineText("MacBookAir10,1", "Apple M1", "", R"(
        {"locationID": 1416848489, "temperature": 40}, {"locationID": 1416835177, "temperature": 5.0},
        {"locationID": 1413951554}, {"locationID": 1413951555, "temperature": -9202.9},
        {"locationID": 1414541410, "temperature": 30}, {"locationID": 1414541410, "temperature": 31},
        {"locationID": 1414541420, "temperature": 32})")); // Tsdi, Ts0i, TG0B, TG0C, TP0b twice, TP0l
    const ThermalDictionary expected{
        {"TP0b", TemperatureEntry{"PMU DIE 0", 31}}, // the later one of two services
        {"TP0l", TemperatureEntry{"PMU DIE 0", 32}}, // a title may be given out twice here
    };
    EXPECT_EQ(ZpM1IOHIDSensors::readHIDTemperatures(mac.simulation.mac), expected);
}

TEST(HIDSensorsDeathTest, StopWithoutAClient)
{
    RecordingHIDs hids({});
    hids.hasClient = false;
    EXPECT_DEATH(ZpM1IOHIDSensors::readHIDTemperatures(hids), "no client of the HID event system");
    hids.hasClient = true;
    for (const std::int64_t type : {-32768, 32767}) // whose field is the smallest and the largest
        EXPECT_TRUE(ZpM1IOHIDSensors::hidReadings(hids, 0xff00, 5, type).empty());
    for (const std::int64_t type : {-32769LL, 32768LL, 1LL << 40})
        EXPECT_DEATH(ZpM1IOHIDSensors::hidReadings(hids, 0xff00, 5, type), "does not fit in 32 bits") << type;
}
