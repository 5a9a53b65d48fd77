#include "platform/JSON.h"

#include "tests/json/JSONCases.h"

#include <gtest/gtest.h>

#include <cmath>

namespace orv {

TEST(FoundationJSON, MakesOfEveryTextWhatTheTableSays)
{
    for (const auto& [name, bytes, expected, onFoundation] : jsonCases())
        EXPECT_TRUE(parseJSON(bytes) == onFoundation.value_or(expected)) << name;
}

TEST(FoundationJSON, KeepsTheSignOfZero)
{
    const auto value = parseJSON("[-0.0]");
    ASSERT_TRUE(value);
    const auto* zero = value->as<Array>()->front().as<double>();
    ASSERT_TRUE(zero);
    EXPECT_TRUE(std::signbit(*zero));
}

TEST(FoundationJSON, RefusesNoBytesAtAll)
{
    EXPECT_FALSE(parseJSON({}));
}

} // namespace orv
