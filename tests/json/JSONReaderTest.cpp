#include "json/JSONReader.h"
#include "platform/JSON.h"
#include "tests/json/JSONCases.h"
#include "json/JSONWriter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace orv;

TEST(JSONReader, FollowsTheTableOfCases)
{
    for (const auto& each : jsonCases())
        EXPECT_EQ(parseJSON(each.bytes), each.expected) << each.name;
}

TEST(JSONReader, RefusesEqualKeysInAFileOfAPerson)
{
    std::string fault;
    EXPECT_FALSE(parseStrictJSON(R"({"z": [], "a": [0, {"b": 1, "c": 2, "b": 1}]})", fault));
    EXPECT_EQ(fault, "a[1].b: the key occurs twice");
    EXPECT_FALSE(parseStrictJSON(R"({"a": {}, "a": {}})", fault));
    EXPECT_EQ(fault, "a: the key occurs twice");
    EXPECT_FALSE(parseStrictJSON("5", fault));
    EXPECT_EQ(fault, "neither an object nor an array");
    EXPECT_FALSE(parseStrictJSON("{\"a\": 1,\n}", fault));
    EXPECT_EQ(fault, "not JSON near byte 10");
}

TEST(JSONWriter, WritesEachKindOfValue)
{
    constexpr auto infinite = std::numeric_limits<double>::infinity();
    Array numbers;
    for (const double number : {40.0, 0.1, 38.2 + 1e-15, -0.0, 1e22, 1e-7, 5e-324, infinite, -infinite, std::nan("")})
        numbers.emplace_back(number);
    EXPECT_EQ(writeJSON(Value(std::move(numbers)), KeyOrder::sorted, Spacing::none),
        "[40.0,0.1,38.2,-0.0,1e+22,1e-07,5e-324,1e999,-1e999,null]");
    const auto text = R"({"b": [true, false, null, -1, 18446744073709551615], "a": "ä\"\\\u001f /\u007f"})";
    std::string fault;
    const auto value = parseStrictJSON(text, fault);
    EXPECT_EQ(writeJSON(*value, KeyOrder::asListed),
        "{\"b\": [true, false, null, -1, 18446744073709551615], \"a\": \"ä\\\"\\\\\\u001f /\x7F\"}");
    EXPECT_EQ(writeJSON(Dictionary({{"b", Array()}, {"a", Dictionary()}}), KeyOrder::asListed, Spacing::none),
        R"({"b":[],"a":{}})");
    EXPECT_EQ(writeJSON(*value, KeyOrder::sorted).find("\"a\""), 1u);
}
