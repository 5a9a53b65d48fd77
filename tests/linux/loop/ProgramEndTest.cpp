#include "linux/loop/ProgramEnd.h"

#include "base/Fatal.h"
#include "linux/loop/Clocks.h"

#include <gtest/gtest.h>

#include <cstdio>

namespace orv {

namespace {

TEST(ProgramEndDeathTest, LeavesNothingUndoneAndSaysItsReasonOnce)
{
    const auto tell = [] { std::fputs("last ", stderr); };
    EXPECT_EXIT((beforeFatalStop = tell, tellOfEnd("why", "because"), tellOfEnd("later"), endAtOnce()),
        testing::ExitedWithCode(1), "^orv-smc-helper: why: because\nlast $");
    EXPECT_EXIT((beforeFatalStop = nullptr, tellOfEnd("why"), endAtOnce()), testing::ExitedWithCode(1),
        "^orv-smc-helper: why\n$");
    EXPECT_DEATH((beforeFatalStop = tell, fatalError("why")), "^orv: fatal error: why\nlast $");
}

TEST(ClocksTest, CountTheTimeAsleepBesideTheTimeAwake)
{
    const auto awake = timeAwake();
    const auto sinceStart = timeSinceStart();
    EXPECT_GT(awake.count(), 0);
    EXPECT_GE(sinceStart, awake);
    EXPECT_GE(timeAwake(), awake);
    EXPECT_LE(timeAsleep(), sinceStart - awake);
}

} // namespace

} // namespace orv
