#include "readings/Integers.h"

#include <gtest/gtest.h>

#include <limits>

using namespace orv;

TEST(IntegerPart, IsCutOffAndStaysWithin64Bits)
{
    using Doubles = std::numeric_limits<double>;
    struct Case {
        double number;
        std::optional<std::int64_t> integer;
    };
    const Case cases[]{{0.9, 0}, {-0.9, 0}, {1999.5, 1999}, {-3.7, -3}, {9223372036854774784.0, 9223372036854774784},
        {9223372036854775808.0, std::nullopt}, {-9223372036854775808.0, INT64_MIN},
        {-9223372036854777856.0, std::nullopt}, {Doubles::infinity(), std::nullopt},
        {-Doubles::infinity(), std::nullopt}, {Doubles::quiet_NaN(), std::nullopt}};
    for (const auto& [number, integer] : cases)
        EXPECT_EQ(integerPart(number), integer) << number;
}
