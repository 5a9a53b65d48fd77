#include "smc/SMCValueEncoding.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

using namespace orv;
using namespace std::string_literals;

TEST(EncodeValue, TakesTheNearestNumberThatTheTypeHolds)
{
    struct Case {
        const char* type;
        double number;
        std::optional<std::string> bytes;
    };
    const Case cases[]{{"ui8 ", -1, "\0"s}, {"ui8 ", 40.5, "\x29"s}, {"ui8 ", 255.4, "\xFF"s}, {"ui8 ", 300, "\xFF"s},
        {"ui16", -1, "\0\0"s}, {"ui16", 258, "\1\2"s}, {"ui16", 70000, "\xFF\xFF"s}, {"ui32", -1, "\0\0\0\0"s},
        {"ui32", 16909060, "\1\2\3\4"s}, {"ui32", 1e300, "\xFF\xFF\xFF\xFF"s}, {"spf0", -1, "\0\0"s},
        {"fpe2", 1999.9, "\x1F\x40"s}, {"fpe2", 16384, "\xFF\xFF"s}, {"fp1f", 1, "\x80\0"s},
        {"sp78", 47.5, "\x2F\x80"s}, {"sp78", -1, "\xFF\0"s}, {"sp78", -200, "\x80\0"s}, {"sp78", 200, "\x7F\xFF"s},
        {"flt ", 100, "\0\0\xC8\x42"s}, {"flt ", 1e300, "\xFF\xFF\x7F\x7F"s}, {"flt ", -1e300, "\xFF\xFF\x7F\xFF"s},
        {"si16", 5, std::nullopt}};
    for (const auto& [type, number, bytes] : cases)
        EXPECT_EQ(encodeValue(*smcValueFormat(type), number), bytes) << type << " " << number;
}
