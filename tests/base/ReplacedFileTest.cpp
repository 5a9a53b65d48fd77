#include "base/ReplacedFile.h"

#include "base/File.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>

using namespace orv;

namespace {

struct ReplacedFiles : testing::Test {
    ReplacedFiles() { std::filesystem::create_directories(folder); }
    ~ReplacedFiles() override { std::filesystem::remove_all(folder); }

    std::ptrdiff_t fileCount() const
    {
        return std::distance(std::filesystem::directory_iterator(folder), std::filesystem::directory_iterator());
    }

    const std::filesystem::path folder =
        std::filesystem::temp_directory_path() / ("orv-replaced-file-test-" + std::to_string(getpid()));
    const std::string place = folder / "file";
};

} // namespace

TEST_F(ReplacedFiles, AreReadableByAllAndReplaceWhatALinkNames)
{
    std::filesystem::create_symlink("file", folder / "link");
    const auto usual = umask(077);
    EXPECT_EQ(replaceFile(place, "one"), "");
    EXPECT_EQ(replaceFile(folder / "link", "two"), "");
    umask(usual);
    EXPECT_EQ(readFile(place, 9), "two");
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "link"));
    EXPECT_EQ(static_cast<int>(std::filesystem::status(place).permissions()), 0644);
    EXPECT_EQ(fileCount(), 2);
}

TEST_F(ReplacedFiles, AreNoneWhereSomethingElseTakesTheText)
{
    ASSERT_EQ(mkfifo(place.c_str(), 0600), 0);
    EXPECT_EQ(replaceFile(place, "one"), place + ": No such device or address"); // and does not wait for a reader
    const FileDescriptor reader(::open(place.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    EXPECT_EQ(replaceFile(place, "two"), "");
    char text[4]{};
    EXPECT_EQ(::read(reader.get(), text, sizeof(text)), 3);
    EXPECT_STREQ(text, "two");
    EXPECT_EQ(replaceFile(folder / "none" / "file", "x"), folder / "none" / "file: No such file or directory");
    EXPECT_EQ(fileCount(), 1);
}

TEST_F(ReplacedFiles, AreGoneUnlessTheyAreMoved)
{
    std::ofstream(place) << "old";
    for (const bool replaces : {false, true}) {
        errno = 0;
        {
            ReplacedFile file(place);
            EXPECT_TRUE(file.open(0600));
            EXPECT_TRUE(file.write("new"));
            EXPECT_EQ(fileCount(), 2);
            EXPECT_EQ(readFile(place, 9), "old");
            EXPECT_EQ(file.moveToPlace(replaces), replaces);
        }
        EXPECT_TRUE(replaces || errno == EEXIST) << errno;
        EXPECT_EQ(fileCount(), 1);
    }
    EXPECT_EQ(readFile(place, 9), "new");
    std::filesystem::remove(place);
    {
        ReplacedFile file(place);
        EXPECT_TRUE(file.open(0640) && file.moveToPlace(false));
    }
    EXPECT_EQ(static_cast<int>(std::filesystem::status(place).permissions()), 0640);
    EXPECT_EQ(fileCount(), 1);
}

// What stands beside the place is another's while that lives, and nobody's once it was killed.
TEST_F(ReplacedFiles, LeaveNothingBesideTheirPlaceAfterAKilledWriter)
{
    for (int killed = 0; killed < 3; ++killed) {
        const auto writer = fork();
        if (writer == 0) {
            ReplacedFile file(place);
            _exit(file.open(0644) && file.write("half") ? 0 : 1);
        }
        int status = 0;
        waitpid(writer, &status, 0);
        EXPECT_EQ(status, 0);
        EXPECT_EQ(fileCount(), 1);
    }
    {
        ReplacedFile slow(place);
        ReplacedFile abandoned(place);
        EXPECT_TRUE(slow.open(0600) && abandoned.open(0600) && slow.write("slow"));
        EXPECT_EQ(replaceFile(place, "quick"), "");
        EXPECT_EQ(readFile(place, 5), "quick");
        EXPECT_FALSE(slow.moveToPlace(false));
        EXPECT_EQ(errno, EEXIST);
        EXPECT_TRUE(slow.moveToPlace(true));
    }
    EXPECT_EQ(readFile(place, 5), "slow");
    EXPECT_EQ(fileCount(), 1);
}
