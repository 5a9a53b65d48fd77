#include "base/File.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <string_view>

using namespace orv;
using namespace std::string_view_literals;

namespace {

struct Files : testing::Test {
    Files() { std::filesystem::create_directories(folder); }
    ~Files() override { std::filesystem::remove_all(folder); }

    const std::filesystem::path folder =
        std::filesystem::temp_directory_path() / ("orv-file-test-" + std::to_string(getpid()));
};

} // namespace

TEST_F(Files, AreReadUpToTheLimit)
{
    const std::string content("a\0b", 3);
    std::ofstream(folder / "file", std::ios::binary) << content;
    std::ofstream(folder / "empty");
    mkfifo((folder / "fifo").c_str(), 0600);

    EXPECT_EQ(readFile(folder / "file", 3), content);
    EXPECT_EQ(readFile(folder / "empty", 3), "");
    EXPECT_EQ(readFile(folder / "file", 2), std::nullopt);
    EXPECT_EQ(errno, EFBIG);
    EXPECT_EQ(readFile(folder / "fifo", 3), std::nullopt); // and does not wait for a writer
    EXPECT_EQ(readFile(folder, 3), std::nullopt);
    EXPECT_EQ(errno, EISDIR);
    EXPECT_EQ(readFile(folder / "nothing", 3), std::nullopt);
    EXPECT_EQ(errno, ENOENT);
}

// The kernel announces no length for a file of its own and hands out a page at a time.
TEST_F(Files, OfTheKernelArriveInSeveralReads)
{
    const auto maps = readFile("/proc/self/maps", 64 << 20);
    if (!maps)
        GTEST_SKIP() << "no /proc here";
    ASSERT_GT(maps->size(), 4096u);
    std::istringstream lines(*maps);
    unsigned long long last = 0;
    for (std::string line; std::getline(lines, line);) {
        const auto start = std::stoull(line, nullptr, 16);
        EXPECT_GT(start, last) << line;
        last = start;
    }
    EXPECT_NE(maps->find("[stack]"), std::string::npos);
    EXPECT_EQ(readFile("/proc/self/maps", 4096), std::nullopt);
    EXPECT_EQ(errno, EFBIG);
}

TEST_F(Files, HaveAFirstLine)
{
    std::ofstream(folder / "file", std::ios::binary) << "one\ntwo\n";
    EXPECT_EQ(firstLineOfFile(folder / "file", 8), "one");
    EXPECT_EQ(firstLineOfFile(folder / "file", 7), "");
    EXPECT_EQ(firstLineOfFile(folder / "nothing", 8), "");
    for (const auto text : {"one"sv, "one\n"sv, "one\0\n"sv, "one\n\0"sv})
        EXPECT_EQ(firstLine(text), "one");
    EXPECT_EQ(firstLine("\none"), "");
}
