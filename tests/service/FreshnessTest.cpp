#include "service/Freshness.h"

#include <gtest/gtest.h>

using namespace orv;

TEST(Freshness, EndsAfterThreeIntervalsExceptAsleep)
{
    using std::chrono::microseconds;
    struct Row {
        long long age;
        bool isAsleep;
        Freshness expected;
    };
    constexpr microseconds interval{5'000'000};
    const Row rows[]{
        {0, false, Freshness::fresh},
        {5'000'000, false, Freshness::fresh},
        {15'000'000, false, Freshness::fresh},
        {15'000'001, false, Freshness::stale},
        {30'000'000'000'000, false, Freshness::stale},
        {15'000'000, true, Freshness::fresh},
        {15'000'001, true, Freshness::asleep},
    };
    for (const auto& row : rows)
        EXPECT_EQ(freshness({microseconds(row.age), interval, row.isAsleep}), row.expected) << row.age;
}
