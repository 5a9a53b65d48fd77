#include "smc/FourCharCode.h"
#include "smc/SMCParamBlock.h"
#include "tests/support/TestMac.h"

#include <gtest/gtest.h>

using namespace orv;

namespace {

constexpr int noConnection = 0x10000003;
constexpr int badArgument = static_cast<int>(0xe00002c2);

} // namespace

TEST(IOKitCalls, AnswerOnlyAWholeBlockOfAKnownCommand)
{
    TestMac mac(intelText(R"({"key": "TC0P", "type": "ui32", "bytes": "01020304"})"));
    mac.smc.open();
    struct Case {
        std::uint32_t selector;
        std::size_t inputSize;
        std::size_t outputSize;
        std::uint8_t command;
        int status;
        io_connect_t beyond = 0; // the connection
    };
    const Case cases[]{{2, 80, 80, kSMCReadBytes, 0}, {2, 80, 81, kSMCReadBytes, 0}, {2, 80, 80, kSMCGetKeyInfo, 0},
        {2, 80, 80, kSMCGetKeyFromIndex, 0}, {2, 80, 80, 7, badArgument}, {1, 80, 80, kSMCReadBytes, badArgument},
        {3, 80, 80, kSMCReadBytes, badArgument}, {2, 79, 80, kSMCReadBytes, badArgument},
        {2, 81, 80, kSMCReadBytes, badArgument}, {2, 80, 79, kSMCReadBytes, badArgument},
        {2, 80, 80, kSMCReadBytes, noConnection, 1}};
    for (const auto& each : cases) {
        SMCParamBlock input{};
        SMCParamBlock output{};
        input.key = fourCharCode("TC0P");
        input.keyInfo.dataSize = 3;
        input.data8 = each.command;
        output.result = 7;
        auto size = each.outputSize;
        EXPECT_EQ(IOConnectCallStructMethod(
                      mac.smc.conn + each.beyond, each.selector, &input, each.inputSize, &output, &size),
            each.status);
        EXPECT_EQ(size, each.status == 0 ? 80 : each.outputSize);
        EXPECT_EQ(output.result, each.status == 0 ? 0 : 7);
        const bool isRead = each.status == 0 && each.command == kSMCReadBytes;
        EXPECT_EQ(output.bytes[2], isRead ? 3 : 0);
        EXPECT_EQ(output.bytes[3], 0) << "as many as were asked for";
    }
}

TEST(IOKitCalls, FindTheSMCOnceAndReleaseWhatTheyGave)
{
    TestMac mac(intelText(""));
    for (const auto* name : {"AppleSMC", "AppleSM"}) {
        io_iterator_t iterator = 0;
        EXPECT_EQ(IOServiceGetMatchingServices(MACH_PORT_NULL, IOServiceMatching(name), &iterator), KERN_SUCCESS);
        const auto service = IOIteratorNext(iterator);
        EXPECT_EQ(service != IO_OBJECT_NULL, std::string(name) == "AppleSMC");
        EXPECT_EQ(IOIteratorNext(iterator), IO_OBJECT_NULL);
        io_connect_t connection = 0;
        EXPECT_EQ(IOServiceOpen(iterator, mach_task_self(), 0, &connection), noConnection) << "no service";
        EXPECT_EQ(IOServiceClose(iterator), noConnection);
        EXPECT_EQ(IOObjectRelease(iterator), KERN_SUCCESS);
        EXPECT_EQ(IOObjectRelease(iterator), noConnection);
        EXPECT_EQ(ioKitUsage().liveObjects, service == IO_OBJECT_NULL ? 0 : 1);
        IOObjectRelease(service);
    }
    EXPECT_EQ(ioKitUsage().liveObjects, 0);
}
