#include "linux/drivers/SMCAttributes.h"

#include "linux/drivers/AttributeText.h"
#include "tests/support/FakeDriver.h"
#include "tests/support/TemporaryFile.h"

#include <gtest/gtest.h>

#include <array>
#include <cerrno>

namespace orv {

namespace {

using Access = SMCAttributes::Access;

TEST(SysfsAttributesTest, AreReadAndWrittenFromTheirBeginning)
{
    const TemporaryFile file("12345");
    SysfsAttributes calls;
    const auto attribute = calls.open(file.path, Access::readingAndWriting);
    std::array<char, 4> text{};
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(calls.write(attribute.get(), round == 0 ? "ab" : "AB"), 2);
        EXPECT_EQ(calls.read(attribute.get(), text), 4);
        EXPECT_EQ(std::string_view(text.data(), 4), round == 0 ? "ab34" : "AB34");
    }
    const auto readOnly = calls.open(file.path, Access::reading);
    EXPECT_EQ(calls.write(readOnly.get(), "x"), -1);
    EXPECT_TRUE(calls.exists(file.path));
    EXPECT_FALSE(calls.exists(file.path + "x"));
    EXPECT_TRUE(calls.lock(attribute.get()));
    EXPECT_FALSE(calls.lock(readOnly.get()));
    EXPECT_EQ(errno, EWOULDBLOCK);
    calls.unlock(attribute.get());
    EXPECT_TRUE(calls.lock(readOnly.get()));
}

TEST(KeptAttributeTest, IsOpenedAgainOnlyWhenItsDriverWent)
{
    FakeDriver fake;
    fake.files["/file"] = "5\n";
    KeptAttribute attribute(fake, "/file", Access::readingAndWriting);
    std::array<char, 8> text{};
    const auto openedAfter = [&](int error, int refusal) {
        fake.refusals.clear();
        if (refusal != 0)
            fake.refusals["/file"] = refusal;
        errno = error;
        const auto count = attribute.read(text);
        EXPECT_EQ(count, refusal == 0 ? 2 : -1) << refusal;
        EXPECT_TRUE(refusal == 0 || errno == refusal) << errno;
        return fake.opens;
    };
    EXPECT_EQ(openedAfter(0, 0), 1);
    EXPECT_EQ(openedAfter(ENODEV, 0), 1) << "an error of before is none of this reading";
    EXPECT_EQ(openedAfter(0, EIO), 1);
    EXPECT_EQ(openedAfter(0, ENODEV), 2);
    for (const bool isThere : {false, true}) { // not yet writable
        fake.unload();
        if (isThere)
            fake.load();
        fake.isWritable = false;
        EXPECT_EQ(attribute.read(text), -1);
        EXPECT_EQ(errno, ENODEV);
    }
    fake.isWritable = true;
    EXPECT_EQ(openedAfter(0, 0), 3);
}

TEST(AttributeTextTest, IsANumberOrACode)
{
    struct Case {
        std::string_view text;
        std::optional<std::int64_t> number;
        std::optional<std::uint32_t> code;
    };
    const Case cases[]{{"", {}, {}}, {"\n", {}, {}}, {"5", 5, 0x35000000}, {"-57\n", -57, 0x2d353700},
        {"1234\n", 1234, 0x31323334}, {"12345\n", 12345, {}}, {"ui8 ", {}, 0x75693820}, {"5\nx", 5, 0x350a7800},
        {"5 \n", {}, 0x35200000}};
    for (const auto& [text, number, code] : cases) {
        EXPECT_EQ(attributeNumber(text), number) << text;
        EXPECT_EQ(attributeCode(text), code) << text;
    }
}

} // namespace

} // namespace orv
