#include "recording/RecordingOutput.h"

#include "base/File.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <fstream>

using namespace orv;

namespace {

struct RecordingFile : testing::Test {
    RecordingFile() { std::filesystem::create_directories(folder); }
    ~RecordingFile() override { std::filesystem::remove_all(folder); }

    const std::filesystem::path folder =
        std::filesystem::temp_directory_path() / ("orv-recording-output-test-" + std::to_string(getpid()));
    const std::string place = folder / "file";
};

} // namespace

TEST_F(RecordingFile, IsWholeInItsPlaceOrGrowsThere)
{
    struct Case {
        WritingMode mode;
        bool isThere;
        bool replaces;
        bool isRefused;
        const char* meanwhile; // what stands in its place before it is finished
    };
    constexpr auto atOnce = WritingMode::atOnce;
    constexpr auto lineByLine = WritingMode::lineByLine;
    const Case cases[]{{atOnce, false, false, false, ""}, {atOnce, true, false, true, "old"},
        {atOnce, true, true, false, "old"}, {lineByLine, false, false, false, "a\nb\n"},
        {lineByLine, true, false, true, "old"}, {lineByLine, true, true, false, "a\nb\n"}};
    for (const auto& each : cases) {
        std::filesystem::remove(place);
        if (each.isThere)
            std::ofstream(place) << "old";
        RecordingOutput output(place, each.mode, each.replaces);
        EXPECT_FALSE(output.isInTheWay());
        EXPECT_EQ(output.open(), !each.isRefused);
        EXPECT_EQ(output.isInTheWay(), each.isRefused);
        EXPECT_EQ(output.fault(), each.isRefused ? place + ": is there already (--force replaces it)" : "");
        output.write("a\n");
        output.write("b\n");
        EXPECT_EQ(readFile(place, 9).value_or(""), each.meanwhile);
        EXPECT_TRUE(output.isRead());
        output.finish();
        EXPECT_EQ(readFile(place, 9), each.isRefused ? "old" : "a\nb\n");
        EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder), {}), 1);
    }
}

TEST_F(RecordingFile, IsWrittenThroughALinkAndStopsAtItsFirstFault)
{
    const std::string link = folder / "link";
    std::filesystem::create_symlink("file", link);
    RecordingOutput linked(link, WritingMode::atOnce, true);
    EXPECT_TRUE(linked.open());
    linked.write("a");
    EXPECT_EQ(readFile(place, 9), "a");
    EXPECT_TRUE(std::filesystem::is_symlink(link));
    for (const auto& [path, fault] : {std::pair<std::string, const char*>("/dev/full", "No space left on device"),
             {folder / "none" / "file", "No such file or directory"}}) {
        RecordingOutput output(path, WritingMode::atOnce, true);
        EXPECT_EQ(output.open(), path == "/dev/full");
        output.write("a");
        output.finish();
        EXPECT_EQ(output.fault(), path + ": " + fault);
        EXPECT_FALSE(output.isInTheWay());
    }
    EXPECT_TRUE(RecordingOutput("", WritingMode::toStandardOutput, false).open());
}
