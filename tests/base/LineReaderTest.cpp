#include "base/LineReader.h"

#include "base/RegularFile.h"
#include "tests/support/TemporaryFile.h"

#include <gtest/gtest.h>

#include <fcntl.h>

#include <cerrno>
#include <string>
#include <vector>

using namespace orv;

namespace {

constexpr std::size_t oneRead = 256u << 10;

const std::string filling(oneRead - 1, 'x');

} // namespace

TEST(LineReader, GivesEachLineUpToTheLongest)
{
    struct Case {
        std::string content;
        std::size_t longest;
        std::vector<std::string> lines;
        int error = 0; // what stands where no line does
        bool isLastEnded = true;
    };
    const Case cases[]{
        {"", 0, {}},
        {"\n\n", 0, {"", ""}},
        {"one\ntwo", 3, {"one", "two"}, 0, false},
        {"one\nfour\n", 3, {"one"}, EFBIG},
        {"one\nfour", 3, {"one"}, EFBIG},
        {filling + "\none\n", oneRead - 1, {filling, "one"}},
        {"one\n" + filling + "\n" + filling + "y\ntwo\n", oneRead, {"one", filling, filling + "y", "two"}},
        {"one\n" + filling + "y\ntwo\n", oneRead - 1, {"one"}, EFBIG},
        {filling + filling + "\n", 2 * oneRead - 2, {filling + filling}},
        {filling + filling, 2 * oneRead - 3, {}, EFBIG},
    };
    for (const auto& [content, longest, lines, error, isLastEnded] : cases) {
        const TemporaryFile file(content);
        LineReader reader(openRegularFile(file.path));
        for (std::size_t index = 0; index < lines.size(); ++index) {
            EXPECT_EQ(reader.next(longest), lines[index]) << content.substr(0, 20);
            EXPECT_EQ(reader.lineNumber(), index + 1);
            EXPECT_EQ(reader.isLineEnded(), isLastEnded || index + 1 < lines.size());
        }
        errno = -1;
        EXPECT_EQ(reader.next(longest), std::nullopt) << content.substr(0, 20);
        EXPECT_EQ(errno, error) << content.substr(0, 20);
    }
}

TEST(LineReader, GoesBackToAnyMark)
{
    const TemporaryFile file("one\n" + filling + "\ntwo\nthree");
    LineReader reader(openRegularFile(file.path));
    const std::vector<std::string> lines{"one", filling, "two", "three"};
    std::vector<LineReader::Mark> marks;
    for (const auto& line : lines) {
        marks.push_back(reader.mark());
        EXPECT_EQ(reader.next(oneRead), line);
    }
    for (const std::size_t index : {3U, 0U, 2U, 1U}) {
        EXPECT_TRUE(reader.goBack(marks[index]));
        EXPECT_TRUE(reader.isLineEnded());
        EXPECT_EQ(reader.lineNumber(), index);
        EXPECT_EQ(reader.next(oneRead), lines[index]);
        EXPECT_EQ(reader.lineNumber(), index + 1);
    }
}

TEST(LineReader, EndsWithTheErrorOfReading)
{
    LineReader folder(FileDescriptor(::open("/", O_RDONLY | O_CLOEXEC)));
    EXPECT_EQ(folder.next(9), std::nullopt);
    EXPECT_EQ(errno, EISDIR);
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    LineReader pipe{FileDescriptor(ends[0])};
    const FileDescriptor writer(ends[1]);
    EXPECT_FALSE(pipe.goBack(pipe.mark()));
}
