#include "readings/Value.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

using namespace orv;

namespace {

std::vector<Member> numbered(std::int64_t count)
{
    std::vector<Member> members;
    for (std::int64_t number = 0; number < count; ++number)
        members.push_back({std::to_string(number), number});
    return members;
}

std::string keysOf(const Dictionary& dictionary)
{
    std::string keys;
    for (const auto& [key, value] : dictionary)
        keys += key + ' ';
    return keys;
}

} // namespace

TEST(Dictionary, KeepsTheFirstOfEqualKeysInTheirOrder)
{
    for (const std::int64_t count : {3, 16, 17, 100}) { // few are compared one by one, many by sorting
        auto listed = numbered(count);
        const auto keys = keysOf(Dictionary(listed));
        listed.insert(listed.begin() + 2, {"1", std::string("second")});
        listed.push_back({"0", std::string("second")});
        const Dictionary dictionary(std::move(listed));
        EXPECT_EQ(keysOf(dictionary), keys);
        EXPECT_EQ(dictionary, Dictionary(numbered(count))) << count;
    }
}

TEST(Dictionary, IsEqualWhateverItsOrder)
{
    const Dictionary dictionary(numbered(5));
    auto reversed = numbered(5);
    std::ranges::reverse(reversed);
    EXPECT_EQ(dictionary, Dictionary(reversed));
    EXPECT_EQ(Value(Array{dictionary}), Value(Array{Dictionary(reversed)}));
    reversed.back().value = std::int64_t{7};
    EXPECT_NE(dictionary, Dictionary(reversed));
    reversed.back() = {"other", std::int64_t{0}};
    EXPECT_NE(dictionary, Dictionary(reversed));
    EXPECT_NE(dictionary, Dictionary(numbered(4)));
    EXPECT_NE(dictionary, Dictionary(numbered(6)));
}

TEST(Dictionary, ReplacesWhatAKeyHad)
{
    Dictionary dictionary(numbered(2));
    dictionary.set("0", true);
    dictionary.set("2", 1.5);
    EXPECT_EQ(dictionary, Dictionary({{"0", true}, {"1", std::int64_t{1}}, {"2", 1.5}}));
    EXPECT_EQ(keysOf(dictionary), "0 1 2 ");
    EXPECT_EQ(*dictionary.findAs<double>("2"), 1.5);
    EXPECT_EQ(dictionary.findAs<double>("1"), nullptr);
    EXPECT_EQ(dictionary.findAs<double>("3"), nullptr);
}
