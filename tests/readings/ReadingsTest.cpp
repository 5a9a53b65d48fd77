#include "readings/Readings.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

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
        {"F0Ac", FanEntry{"fan"}}, {"TC0P", temperature("C")}};
    std::string codes;
    for (const auto& [code, reading] : dictionary)
        codes += code + ' ';
    EXPECT_EQ(codes, "F0Ac TC0P Ta0P ");
    EXPECT_EQ(dictionary.at("TC0P"), temperature("C"));
    EXPECT_TRUE(dictionary.contains("Ta0P"));
    EXPECT_FALSE(dictionary.contains("TC0"));
    EXPECT_FALSE(dictionary.contains("Tz"));
    EXPECT_THROW(dictionary.at("TC0"), std::out_of_range);
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
