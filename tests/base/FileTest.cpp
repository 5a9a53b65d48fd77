#include "base/File.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <cerrno>
#include <filesystem>
#include <fstream>

using namespace orv;

TEST(ReadFile, TakesRegularFilesUpToTheLimit)
{
    const auto folder = std::filesystem::temp_directory_path() / ("orv-file-test-" + std::to_string(getpid()));
    std::filesystem::create_directories(folder);
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
    std::filesystem::remove_all(folder);
}
