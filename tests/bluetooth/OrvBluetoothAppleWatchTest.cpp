#include "bluetooth/OrvBluetoothAppleWatch.h"

#include "bluetooth/WatchFile.h"
#include "platform/Bundle.h"
#include "tests/support/TestMac.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

using namespace orv;

namespace {

const char* watchText = R"({"sysctl": {"hw.model": "Mac14,2", "machdep.cpu.brand_string": "Apple M2"},
    "watch": {"watch-1": {"batteryLevel": 80, "note": null}}})";

struct WatchReader : testing::Test {
    TestMac mac{watchText};
    int launches = 0;
    bool companionWorks = true;
    std::shared_ptr<OrvBluetoothAppleWatch> reader;

    WatchReader()
    {
        mac.simulation.workspace.onOpen = [this](const std::string&) {
            ++launches;
            if (companionWorks)
                mac.simulation.bundle.runCompanion();
        };
        reader = OrvBluetoothAppleWatch::create(mac.simulation.platform);
    }

    bool hasEntry(const char* key) const { return reader->systemBlueToothDictionary.contains(key); }

    void write(const std::string& content) const
    {
        std::ofstream(*reader->watchBatteryFileURL(), std::ios::binary | std::ios::trunc) << content;
    }
};

} // namespace

TEST_F(WatchReader, ReadsTheFileFiveSecondsAfterEachLaunch)
{
    mac.runLoop.advance(Seconds(4.999));
    EXPECT_FALSE(hasEntry("watch-1"));
    EXPECT_TRUE(reader->isUpdating);
    mac.runLoop.advance(Seconds(0.001));
    EXPECT_TRUE(hasEntry("watch-1"));
    EXPECT_EQ(reader->systemBlueToothDictionary.at("watch-1").size(), 2u); // the null is kept here
    EXPECT_FALSE(reader->isUpdating);
    mac.runLoop.advance(Seconds(34.999));
    EXPECT_EQ(launches, 1);
    mac.runLoop.advance(Seconds(0.001));
    EXPECT_EQ(launches, 2);
}

TEST_F(WatchReader, KeepsTheLastEntriesWhenTheFileTurnsBad)
{
    mac.runLoop.advance(Seconds(5));
    companionWorks = false;
    const auto tooLong = "{}" + std::string((1u << 20) - 1, ' ');
    for (const std::string content :
        {"", "{", "[]", R"({"a": {}, "b": 5})", R"({"a": {}, "b": null})", tooLong.c_str()}) {
        write(content);
        mac.runLoop.advance(Seconds(40));
        EXPECT_TRUE(hasEntry("watch-1")) << content.substr(0, 100);
    }
    std::filesystem::remove(*reader->watchBatteryFileURL());
    mac.runLoop.advance(Seconds(40));
    EXPECT_TRUE(hasEntry("watch-1"));
    write(R"({"watch-2": {}})");
    mac.runLoop.advance(Seconds(40));
    EXPECT_FALSE(hasEntry("watch-1"));
    EXPECT_TRUE(hasEntry("watch-2"));
    write(tooLong.substr(0, 1u << 20));
    mac.runLoop.advance(Seconds(40));
    EXPECT_TRUE(reader->systemBlueToothDictionary.empty());
}

TEST_F(WatchReader, SaysWhatIsInTheWay)
{
    const auto& bundle = mac.simulation.bundle;
    companionWorks = false;
    TestMac other(watchText);
    EXPECT_EQ(readWatchFile(other.simulation.bundle).outcome, WatchFileOutcome::noContainer);
    struct Case {
        const char* content;
        WatchFileOutcome outcome;
        const char* member = "";
        std::optional<std::size_t> faultPosition = std::nullopt;
    };
    using enum WatchFileOutcome;
    const Case cases[]{{R"({"a": x})", notJSON, "", 7}, {"[]", notObjects}, {R"({"a": {}, "b": 5})", notObjects, "b"},
        {R"({"a": {}})", read}};
    for (const auto& [content, outcome, member, faultPosition] : cases) {
        write(content);
        const auto file = readWatchFile(bundle);
        EXPECT_EQ(file.outcome, outcome) << content;
        EXPECT_EQ(file.path, reader->watchBatteryFileURL());
        EXPECT_EQ(file.bytes, content);
        EXPECT_EQ(file.member, member) << content;
        EXPECT_EQ(file.faultPosition, faultPosition) << content;
        EXPECT_EQ(file.entries.size(), outcome == read ? 1u : 0u) << content;
    }
    std::filesystem::remove(*reader->watchBatteryFileURL());
    EXPECT_EQ(readWatchFile(bundle).outcome, noFile);
}

TEST_F(WatchReader, StartsNoCycleWhileTheComputerSleepsAndEndsTheOneUnderWay)
{
    mac.sleep();
    mac.runLoop.advance(Seconds(120));
    EXPECT_EQ(launches, 1);
    EXPECT_TRUE(hasEntry("watch-1"));
    mac.wake();
    EXPECT_EQ(launches, 2);
    mac.wake();
    EXPECT_EQ(launches, 2);
}

TEST_F(WatchReader, LivesUntilTheCycleUnderWayHasEnded)
{
    const std::weak_ptr<OrvBluetoothAppleWatch> watched = reader;
    reader.reset();
    EXPECT_FALSE(watched.expired());
    mac.runLoop.advance(Seconds(5));
    EXPECT_TRUE(watched.expired());
}

TEST(WatchReaderWithoutACompanion, ReadsNothing)
{
    TestMac mac(intelText(""));
    int launches = 0;
    mac.simulation.workspace.onOpen = [&](const std::string&) { ++launches; };
    const auto reader = OrvBluetoothAppleWatch::create(mac.simulation.platform);
    mac.runLoop.advance(Seconds(100));
    EXPECT_EQ(launches, 0);
    EXPECT_FALSE(reader->isUpdating);
    EXPECT_TRUE(reader->systemBlueToothDictionary.empty());
}
