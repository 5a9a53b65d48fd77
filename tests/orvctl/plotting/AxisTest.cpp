#include "orvctl/plotting/Axis.h"
#include "orvctl/plotting/TimeAxis.h"
#include "orvctl/watching/WallTime.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>

using namespace orv;

namespace {

struct Zone {
    explicit Zone(const char* name)
    {
        setenv("TZ", name, 1);
        tzset();
    }
    ~Zone()
    {
        unsetenv("TZ");
        tzset();
    }
    Zone(const Zone&) = delete;
    Zone& operator=(const Zone&) = delete;
};

std::string labels(const TimeAxis& axis)
{
    std::string text;
    for (const auto& mark : axis.marks)
        text += (text.empty() ? "" : ", ") + mark.label;
    return text;
}

} // namespace

TEST(Axis, HoldsItsValuesBetweenRoundEndsInFewSteps)
{
    struct Case {
        double least, most, low, high, step;
    };
    for (const auto& [least, most, low, high, step] :
        {Case{41, 67, 40, 70, 5}, {0, 6241, 0, 7000, 1000}, {0, 100, 0, 100, 20}, {-3, 3.5, -3, 4, 1},
            {21.01, 21.04, 21.01, 21.04, 0.005}, {40, 40, 36, 44, 1}, {0, 0, -1, 1, 0.5}, {0, 1e9, 0, 1e9, 2e8}}) {
        const auto axis = axisAround(least, most, 8);
        EXPECT_NEAR(axis.low, low, 1e-9) << least << " to " << most;
        EXPECT_NEAR(axis.high, high, 1e-9) << least << " to " << most;
        EXPECT_NEAR(axis.step, step, 1e-9) << least << " to " << most;
    }
    for (double most = 1e-6; most < 2e9; most *= 1.37) {
        for (const int steps : {2, 4, 9}) {
            const auto axis = axisAround(-most / 3, most, steps);
            EXPECT_TRUE(axis.low <= -most / 3 && axis.high >= most) << most;
            const auto marks = marksOf(axis).size();
            EXPECT_TRUE(marks >= 2 && marks <= static_cast<std::size_t>(steps) + 1) << most << ": " << marks;
        }
    }
    EXPECT_EQ(marksOf({-0.2, 0.3, 0.1}).size(), 6u);
}

TEST(TimeAxis, SaysTimeSinceTheBeginningAsAPersonDoes)
{
    struct Case {
        TimeRange range;
        std::string labels;
    };
    for (const auto& [range, expected] : {Case{{0, 30}, "0, 5 s, 10 s, 15 s, 20 s, 25 s, 30 s"},
             {{50, 80}, "50 s, 55 s, 1:00 min, 1:05 min, 1:10 min, 1:15 min, 1:20 min"},
             {{0, 2400}, "0, 5 min, 10 min, 15 min, 20 min, 25 min, 30 min, 35 min, 40 min"},
             {{3000, 5400}, "50 min, 55 min, 1:00 h, 1:05 h, 1:10 h, 1:15 h, 1:20 h, 1:25 h, 1:30 h"},
             {{0, 86400}, "0, 3 h, 6 h, 9 h, 12 h, 15 h, 18 h, 21 h, 24 h"},
             {{0, 604800}, "0, 1 d, 2 d, 3 d, 4 d, 5 d, 6 d, 7 d"},
             {{0, 1e9}, "0, 2000 d, 4000 d, 6000 d, 8000 d, 10000 d"}})
        EXPECT_EQ(labels(timeAxis(range, std::nullopt, 9)), expected) << range.from << " to " << range.to;
}

TEST(TimeAxis, SaysTimesOfDayInTheZoneOfTheEnvironment)
{
    const auto beginning = parseWallTime("2026-11-21T22:10:04.123Z");
    {
        const Zone zone("UTC");
        const auto axis = timeAxis({0, 3 * 3600}, beginning, 9);
        EXPECT_EQ(labels(axis), "22:30, 23:00, 23:30, 22 Nov, 00:30, 01:00");
        EXPECT_NEAR(axis.marks.front().at, 20 * 60 - 4.123, 1e-6);
        EXPECT_EQ(axis.caption, "21 November 2026 to 22 November 2026, UTC");
        EXPECT_EQ(labels(timeAxis({0, 20}, beginning, 4)), "22:10:05, 22:10:10, 22:10:15, 22:10:20");
    }
    const Zone zone("XST-5:45");
    const auto axis = timeAxis({0, 3 * 3600}, beginning, 4);
    EXPECT_EQ(labels(axis), "04:00, 05:00, 06:00");
    EXPECT_EQ(axis.caption, "22 November 2026, XST");
}

TEST(WallTime, IsReadAsItIsWritten)
{
    for (const std::string text : {"2026-11-21T22:10:04.123Z", "1970-01-01T00:00:00.000Z", "2024-02-29T23:59:59.999Z"})
        EXPECT_EQ(rfc3339(*parseWallTime(text)), text);
    EXPECT_EQ(parseWallTime("2026-11-21T22:10Z"), parseWallTime("2026-11-21T23:40:00+01:30"));
    EXPECT_EQ(parseWallTime("2026-11-21T22:10:04.5z"), parseWallTime("2026-11-21T20:10:04.500000999-02:00"));
    for (const auto* text :
        {"", "time", "90", "2026-11-21", "2026-11-21T22:10:04", "2026-02-30T00:00Z", "2026-11-21T24:00Z",
            "2026-11-21T22:10:04.Z ", "2026-11-21T22:10:-4Z", "9999-01-01T00:00Z", "2026-11-21T22:10+1:00"})
        EXPECT_FALSE(parseWallTime(text)) << text;
}
