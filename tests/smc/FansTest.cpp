#include "smc/Fans.h"

#include "tests/support/TestMac.h"

#include <gtest/gtest.h>

using namespace orv;

TEST(Fans, AreReportedByTheirActualSpeedKeys)
{
    TestMac mac(
        intelText(R"({"key": "F0Ac", "type": "fpe2", "bytes": "1f3e"}, {"key": "F0Mn", "type": "fpe2", "bytes": "12c0"},
        {"key": "F0Mx", "type": "fpe2", "bytes": "6590"}, {"key": "F1Ac", "type": "flt ", "bytes": "0010f944", "fails": true},
        {"key": "F2Mn", "type": "fpe2", "bytes": "12c0"}, {"key": "FAAc", "type": "flt ", "bytes": "0010f944"},
        {"key": "FEAc", "type": "fpe2", "bytes": "1f3e"}, {"key": "FFAc", "type": "fpe2", "bytes": "1f3e"})"));
    mac.smc.open();
    const auto fans = Orv_SMCHelper::readFans(mac.smc, {"FFAc", "FEAc", "FAAc", "F1Ac", "F0Ac"});
    const ThermalDictionary expected{
        {"F0Ac", FanEntry{"Left Side", 2000, 1200, 6500}}, // 1999.5 rounds away from zero
        {"F1Ac", FanEntry{"Right Side", 0, 0, 0}}, {"FAAc", FanEntry{"Fan 10", 1993, 0, 0}},
        {"FEAc", FanEntry{"Fan 14", 2000, 0, 0}}, // the last one
    };
    EXPECT_EQ(fans, expected);
    EXPECT_EQ(mac.hardware.exchanges.front(), "info F0Mn");
    EXPECT_EQ(mac.hardware.count("info F2"), 0u);
}

TEST(Fans, AreCalledByTheirSideOrNumber)
{
    EXPECT_EQ(Orv_SMCHelper::fanTitle(1), "Right Side");
    EXPECT_EQ(Orv_SMCHelper::fanTitle(2), "Fan 2");
}

TEST(Fans, WithASpeedThatWasLostToAnotherProgramAreLeftOut)
{
    for (const std::string lost : {"F0Ac", "F0Mn", "F0Mx"}) {
        TestMac mac(intelText(R"({"key": "F0Ac", "type": "fpe2", "bytes": "1f3e"},
            {"key": "F1Ac", "type": "fpe2", "bytes": "12c0"}, {"key": "F1Mn", "type": "fpe2", "bytes": "12c0"})"));
        mac.smc.open();
        mac.hardware.keyWithFailingBytes = lost;
        mac.hardware.failure = SMCOutcome::lost();
        const auto fans = Orv_SMCHelper::readFans(mac.smc, {"F0Ac", "F1Ac"});
        EXPECT_EQ(fans, (ThermalDictionary{{"F1Ac", FanEntry{"Right Side", 1200, 1200, 0}}})) << lost;
        // In that refresh alone; and one that is refused is 0.
        mac.hardware.failure = SMCOutcome::failed();
        EXPECT_EQ(Orv_SMCHelper::readFans(mac.smc, {"F0Ac", "F1Ac"}).size(), 2u) << lost;
    }
}

TEST(Fans, AreNotAskedForWithoutKeys)
{
    TestMac mac(intelText(R"({"key": "F0Ac", "type": "fpe2", "bytes": "1f3e"})"));
    mac.smc.open();
    EXPECT_TRUE(Orv_SMCHelper::readFans(mac.smc, {}).empty());
    EXPECT_TRUE(mac.hardware.exchanges.empty());
}

using FansDeathTest = testing::Test;

TEST(FansDeathTest, StopAtASpeedThatIsNoInteger)
{
    for (const auto* speed : {"0000807f", "0000c07f", "0000005f"}) { // infinite, not a number, 2^63
        TestMac mac(intelText(R"({"key": "F0Ac", "type": "flt ", "bytes": ")" + std::string(speed) + "\"}"));
        mac.smc.open();
        EXPECT_DEATH(Orv_SMCHelper::readFans(mac.smc, {"F0Ac"}), "a fan speed is out of range") << speed;
    }
}
