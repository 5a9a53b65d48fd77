#include "smc/SMC.h"

#include "smc/FourCharCode.h"
#include "tests/support/TestMac.h"

#include <gtest/gtest.h>

using namespace orv;

TEST(FourCharCode, PutsTheFirstCharacterInTheMostSignificantByte)
{
    EXPECT_EQ(fourCharCode("TC0P"), 0x54433050u);
    EXPECT_EQ(fourCharCode("#KEY"), 0x234B4559u);
    EXPECT_EQ(fourCharCode("TC10C"), 0x4331'3043u);
    EXPECT_EQ(fourCharCode("\xFF"), 0xFFu);
    EXPECT_EQ(fourCharString(0x73703738), "sp78");
    EXPECT_EQ(fourCharString(0x666C7420), "flt ");
    EXPECT_EQ(fourCharString(0x75693800), std::string("ui8\0", 4));
    EXPECT_EQ(fourCharString(0x41FF42E9), "A\u00FF\u0042\u00E9");
    EXPECT_EQ(fourCharString(0x7F80C0BF), "\x7F\u0080\u00C0\u00BF");
    for (const int shift : {0, 8, 16, 24})
        EXPECT_EQ(fourCharString(0x41414141 ^ 0xC1u << shift).size(), 5u) << shift;
}

TEST(SMC, AsksForInfoAndBytesAndNothingElse)
{
    TestMac mac(intelText(R"({"key": "TC0P", "type": "sp78", "bytes": "2f80"})"));
    mac.smc.open();
    EXPECT_EQ(mac.smc.getValue("TC0P"), 47.5);
    EXPECT_EQ(mac.hardware.exchanges, (std::vector<std::string>{"info TC0P", "bytes TC0P"}));
    EXPECT_EQ(ioKitUsage().liveObjects, 0);
    EXPECT_EQ(ioKitUsage().openConnections, 1);
    EXPECT_EQ(mac.smc.close(), KERN_SUCCESS);
    EXPECT_EQ(ioKitUsage().openConnections, 0);
}

TEST(SMC, ListsEachKeyOnceAndTheIndexPastTheLast)
{
    TestMac mac(intelText(R"({"key": "#KEY", "type": "ui32", "bytes": "00000004"}, {"key": "TB0T"},
        {"key": "F0Ac", "fails": true}, {"key": "tC0P"}, {"key": "TA0P"})"));
    mac.smc.open();
    EXPECT_EQ(mac.smc.getAllKeys(), (std::vector<std::string>{"TB0T", "F0Ac", "TA0P"}));
    EXPECT_EQ(mac.hardware.count("index"), 5u);
    EXPECT_EQ(mac.hardware.exchanges.size(), 7u);
    mac.smc.getAllKeys();
    EXPECT_EQ(mac.hardware.exchanges.size(), 7u);
}

TEST(SMC, WalksOnPastAnIndexThatFails)
{
    TestMac mac(intelText(R"({"key": "TB0T"}, {"key": "F0Ac"}, {"key": "TA0P"})"));
    mac.hardware.failingIndex = 0;
    mac.smc.open();
    EXPECT_EQ(mac.smc.getAllKeys(), (std::vector<std::string>{"F0Ac", "TA0P"}));
    EXPECT_EQ(mac.hardware.count("index"), 4u);
}

TEST(SMC, AsksForOneIndexWhereThereAreNoKeys)
{
    TestMac mac(intelText(R"({"key": "TB0T"}, {"key": "#KEY", "type": "ui32", "bytes": "00000000"}, {"key": "TA0P"})"));
    mac.smc.open();
    EXPECT_EQ(mac.smc.getAllKeys(), (std::vector<std::string>{"TB0T"}));
    EXPECT_EQ(mac.hardware.count("index"), 1u);
}

TEST(SMC, KeepsAnEmptyKeyListForGood)
{
    TestMac mac(intelText(R"({"key": "TB0T"})"));
    mac.hardware.isPresent = false;
    mac.smc.open();
    EXPECT_TRUE(mac.smc.getAllKeys().empty());
    mac.hardware.isPresent = true;
    mac.smc.open();
    EXPECT_TRUE(mac.smc.getAllKeys().empty());
}

TEST(SMC, WithoutAConnectionFailsAtTheFirstExchange)
{
    TestMac mac(intelText(R"({"key": "TC0P", "type": "sp78", "bytes": "2f80"})"));
    SMCVal val{.key = "TC0P"};
    EXPECT_EQ(mac.smc.read(val), 0x10000003);
    EXPECT_EQ(val.dataType, "");
    EXPECT_EQ(mac.smc.close(), KERN_SUCCESS);
    EXPECT_TRUE(mac.hardware.exchanges.empty());
}

TEST(SMC, FailsOnTheStaleHandleWhenALaterOpenFails)
{
    TestMac mac(intelText(R"({"key": "TC0P", "type": "sp78", "bytes": "2f80"})"));
    mac.smc.open();
    mac.smc.close();
    const auto handle = mac.smc.conn;
    mac.hardware.isPresent = false;
    mac.smc.open();
    EXPECT_EQ(mac.smc.conn, handle);
    EXPECT_EQ(mac.smc.getValue("TC0P"), std::nullopt);
    EXPECT_NE(mac.smc.close(), KERN_SUCCESS);
    EXPECT_EQ(ioKitUsage().liveObjects, 0);
}

TEST(SMC, AnswersAbsentForEachKindOfFailure)
{
    TestMac mac(intelText(R"({"key": "TAAA", "type": "sp78", "bytes": "2f80", "size": 0},
        {"key": "TBBB", "type": "sp78", "bytes": "2f80", "fails": true}, {"key": "TCCC", "type": "sp78", "bytes": "2f80"})"));
    mac.hardware.keyWithFailingBytes = "TCCC";
    mac.smc.open();
    for (const auto* key : {"TAAA", "TBBB", "TCCC", "TDDD"})
        EXPECT_EQ(mac.smc.getValue(key), std::nullopt) << key;
    EXPECT_EQ(mac.hardware.count("bytes TBBB"), 0u);
}

TEST(SMC, TakesAsManyBytesAsAreReportedAndNoMoreThan32)
{
    TestMac mac(intelText(R"({"key": "TAAA", "type": "ui32", "bytes": "0000029a", "size": 4294967295},
        {"key": "TBBB", "type": "ui16", "bytes": "2f80", "size": 1})"));
    mac.smc.open();
    SMCVal val{.key = "TAAA"};
    EXPECT_EQ(mac.smc.read(val), KERN_SUCCESS);
    EXPECT_EQ(val.dataSize, 4294967295u);
    EXPECT_EQ(mac.smc.getValue("TAAA"), 666.0);
    EXPECT_EQ(mac.smc.getValue("TBBB"), 0x2f00);
}

using SMCDeathTest = testing::Test;

TEST(SMCDeathTest, StopsAtABrokenPrecondition)
{
    TestMac mac(intelText(R"({"key": "#KEY", "type": "flt ", "bytes": "0000c07f"})"));
    mac.smc.open();
    EXPECT_DEATH(mac.smc.getValue("TC0"), "^orv: fatal error: an SMC key has four characters\n$");
    EXPECT_DEATH(mac.smc.getValue("TC10C"), "four characters");
    EXPECT_DEATH(mac.smc.getAllKeys(), "not a count");
    TestMac many(intelText(R"({"key": "#KEY", "type": "flt ", "bytes": "0000804f"})")); // 2^32
    many.smc.open();
    EXPECT_DEATH(many.smc.getAllKeys(), "key index does not fit in 32 bits");
    for (const auto* count : {"0000807f", "000080bf", "0000805f"}) { // infinite, -1, 2^64
        TestMac other(intelText(R"({"key": "#KEY", "type": "flt ", "bytes": ")" + std::string(count) + "\"}"));
        other.smc.open();
        EXPECT_DEATH(other.smc.getAllKeys(), "key count is not a count") << count;
    }
}
