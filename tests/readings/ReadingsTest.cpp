#include "readings/Readings.h"

#include <gtest/gtest.h>

#include <vector>

using namespace orv;

namespace {

ThermalDictionary::Reading temperature(const char* title)
{
    return TemperatureEntry{title, 40};
}

} // namespace

TEST(ThermalDictionary, KeepsItsCodesInByteOrderHoweverTheyCome)
{
    const ThermalDictionary dictionary{{"TC0P", temperature("replaced")}, {"Ta0P", temperature("a")},
        {"F0Ac", FanEntry{"fan"}}, {"TC0P", temperature("C")}, {"Ta0P", temperature("b")}};
    const std::vector<ThermalDictionary::Entry> entries(dictionary.begin(), dictionary.end());
    EXPECT_EQ(entries,
        (std::vector<ThermalDictionary::Entry>{
            {"F0Ac", FanEntry{"fan"}}, {"TC0P", temperature("C")}, {"Ta0P", temperature("b")}}));
}

TEST(MergeReadings, KeepsTheEntriesOfTheSecond)
{
    const ThermalDictionary first{{"A", temperature("1")}, {"C", temperature("1")}, {"D", temperature("1")}};
    const ThermalDictionary second{{"B", temperature("2")}, {"C", temperature("2")}};
    const ThermalDictionary both{
        {"A", temperature("1")}, {"B", temperature("2")}, {"C", temperature("2")}, {"D", temperature("1")}};
    EXPECT_EQ(mergeReadings(first, second), both);
    EXPECT_EQ(mergeReadings(first, ThermalDictionary()), first);
    EXPECT_EQ(mergeReadings(ThermalDictionary(), first), first);
}
