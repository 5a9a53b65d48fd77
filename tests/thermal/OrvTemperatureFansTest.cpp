#include "thermal/OrvTemperatureFans.h"

#include "tests/support/TestMac.h"
#include "thermal/ZpSystemInfo.h"

#include <gtest/gtest.h>

#include <sys/sysctl.h>

#include <cerrno>
#include <cstring>

using namespace orv;

namespace {

OrvTemperatureFans profile(const std::string& model, const std::string& processor, const std::string& more = "")
{
    TestMac mac(R"({"sysctl": {"hw.model": ")" + model + R"(", "machdep.cpu.brand_string": ")" + processor + "\"" + more
        + "}}");
    return OrvTemperatureFans();
}

} // namespace

TEST(MachineProfile, TellsTheThreeKindsOfMachineApart)
{
    EXPECT_FALSE(profile("MacBookPro11,4", "Intel(R) Core(TM) i7").isAppleChip);
    EXPECT_FALSE(profile("MacBookPro17,1", "apple m1").isAppleChip);
    EXPECT_TRUE(profile("MacBookPro17,1", "Apple M1").isAppleChip);
    for (const auto* model : {"MacBookPro17,1", "MacBookAir10,1", "Macmini9,1", "iMac21,1", "iMac21,2", "iMac21,10"})
        EXPECT_TRUE(profile(model, "Apple M1").isM1()) << model;
    for (const auto* model : {"MacBookPro18,3", "Mac14,2", "macbookpro17,1", "iMac21"})
        EXPECT_FALSE(profile(model, "Apple M1 Pro").isM1()) << model;
}

TEST(MachineProfile, KeepsFourCoresWhereTheKernelDoesNotCountThem)
{
    const auto intel = profile("MacBookPro11,4", "Intel");
    EXPECT_EQ(intel.numberOfEfficiencyCores, 4);
    EXPECT_EQ(intel.numberOfPerformanceCores, 4);
    const auto apple =
        profile("Mac16,8", "Apple M4 Pro", R"(, "hw.perflevel0.logicalcpu": 10, "hw.perflevel1.logicalcpu": 2)");
    EXPECT_EQ(apple.numberOfEfficiencyCores, 2);
    EXPECT_EQ(apple.numberOfPerformanceCores, 10);
}

TEST(MachineProfile, SurvivesACountOfAnotherForm)
{
    const auto odd = profile(
        "Mac16,8", "Apple M4", R"(, "hw.perflevel0.logicalcpu": "eight texts", "hw.perflevel1.logicalcpu": -1)");
    EXPECT_EQ(odd.numberOfPerformanceCores, 4); // a value too long for the buffer writes nothing
    EXPECT_EQ(odd.numberOfEfficiencyCores, 4294967295);
}

TEST(Sysctl, AnswersAsTheKernelDoes)
{
    TestMac mac(R"({"sysctl": {"hw.model": "Mac14,2", "a": "x\u0000y"}})");
    char buffer[8] = "unset";
    std::size_t size = 3;
    EXPECT_EQ(sysctlbyname("hw.nothing", buffer, &size, nullptr, 0), -1);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(size, 3u);
    EXPECT_EQ(sysctlbyname("hw.model", buffer, &size, nullptr, 0), -1);
    EXPECT_EQ(errno, ENOMEM);
    EXPECT_STREQ(buffer, "unset");
    size = sizeof(buffer);
    EXPECT_EQ(sysctlbyname("hw.model", buffer, &size, nullptr, 0), 0);
    EXPECT_EQ(size, 8u);
    EXPECT_STREQ(buffer, "Mac14,2");
    EXPECT_EQ(ZpSystemInfo::sysctlString("a"), "x");
}

TEST(MachineProfileDeathTest, StopsWithoutAModelOrAProcessor)
{
    TestMac mac(R"({"sysctl": {"hw.model": "Mac14,2"}})");
    EXPECT_DEATH(OrvTemperatureFans(), "^orv: fatal error: the machine model or the processor name is missing\n$");
}
