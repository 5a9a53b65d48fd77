#include "orvctl/top/History.h"

#include "orvctl/top/Glyphs.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace orv;

namespace {

std::string drawn(const History& history, std::size_t count)
{
    return sparkline(history.columns("T", count), 0, 7, glyphs(true));
}

void take(History& history, double at, double value)
{
    TopReading reading;
    reading.identity = "T";
    reading.value = value;
    history.take({reading}, Seconds(at));
}

} // namespace

TEST(History, KeepsTheHighestOfEachHalfMinuteAndGaps)
{
    History history;
    for (const auto& [at, value] : {std::pair{31.0, 1.0}, {35.0, 4.0}, {59.9, 2.0}, {60.0, 0.0}, {125.0, 7.0}})
        take(history, at, value);
    EXPECT_EQ(drawn(history, 6), "  =_ #");
    take(history, 100, 3); // before the last one: it counts as that
    EXPECT_EQ(drawn(history, 2), " #");
    history.take({}, Seconds(160));
    EXPECT_EQ(drawn(history, 4), "_ # ");
    EXPECT_EQ(history.find("T")->lowest, 0);
    EXPECT_EQ(history.find("T")->highest, 7);
    take(history, 1e7, 5); // long asleep
    EXPECT_EQ(drawn(history, 3), "  +");
    EXPECT_EQ(history.find("other"), nullptr);
}

TEST(History, TakesNoMoreThanAnHourAndCountsNoInfinity)
{
    History history;
    for (int count = 0; count < 1000; ++count)
        take(history, count * History::columnTime.count(), count % 2 ? HUGE_VAL : count);
    const auto& seen = *history.find("T");
    EXPECT_EQ(seen.columns.size(), History::mostColumns);
    EXPECT_EQ(std::pair(seen.lowest, seen.highest), std::pair(0.0, 998.0));
    EXPECT_EQ(drawn(history, 2), "##");
}

TEST(Bar, IsFilledByEighthsOrByWholeColumns)
{
    struct Case {
        double part;
        const char* unicode;
        const char* ascii;
    };
    for (const auto& [part, unicode, ascii] : {Case{-1, "    ", "...."}, {0, "    ", "...."}, {0.5, "██  ", "##.."},
             {0.53, "██▏ ", "##.."}, {0.97, "███▉", "####"}, {1, "████", "####"}, {HUGE_VAL, "████", "####"}}) {
        EXPECT_EQ(bar(4, part, glyphs(false)), unicode);
        EXPECT_EQ(bar(4, part, glyphs(true)), ascii);
    }
}
