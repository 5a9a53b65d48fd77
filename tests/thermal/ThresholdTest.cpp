#include "thermal/Threshold.h"

#include <gtest/gtest.h>

#include <limits>

using namespace orv;

TEST(Threshold, IsPassedOnlyByANumberAboveIt)
{
    using Limits = std::numeric_limits<double>;
    for (const double degrees : {10.0, 9.999, -40.0, -Limits::infinity(), Limits::quiet_NaN()})
        EXPECT_FALSE(countsAbove(smcThreshold, degrees)) << degrees;
    for (const double degrees : {10.0001, 130.0, Limits::infinity()})
        EXPECT_TRUE(countsAbove(smcThreshold, degrees)) << degrees;
}
