#include "readings/Text.h"

#include <gtest/gtest.h>

using namespace orv;

TEST(RepairedUTF8, ReplacesEachInvalidSequenceOnce)
{
    struct Case {
        std::string bytes;
        std::string text;
    };
    const Case cases[]{
        {"plain äöü € 😀", "plain äöü € 😀"},
        {std::string("a\0b", 3), std::string("a\0b", 3)},
        {"\x80", "�"},
        {"a\xC3", "a�"},
        {"\xE2\x82", "�"}, // a sequence that breaks off is one fault …
        {"\xE2\x82z", "�z"},
        {"\xF0\x9F\x98\xF0\x9F\x98\x80", "�😀"},
        {"\xC0\xAF", "��"}, // … bytes that can begin nothing are one each
        {"\xE0\x80\xAF", "���"},
        {"\xED\xA0\x80", "���"}, // a surrogate
        {"\xF4\x90\x80\x80", "����"}, // past U+10FFFF
        {"\xF5\xFF", "��"},
    };
    for (const auto& [bytes, text] : cases)
        EXPECT_EQ(repairedUTF8(bytes), text);
}

TEST(TextWithoutNoncharacters, ReplacesThemAndNul)
{
    EXPECT_EQ(textWithoutNoncharacters(std::string("a\0\xEF\xB7\x90\xEF\xB7\xAF\xEF\xBF\xBE\xF4\x8F\xBF\xBF\xFF", 16)),
        "a������");
    EXPECT_EQ(textWithoutNoncharacters("\xEF\xB7\x8F\xEF\xB7\xB0\xEF\xBF\xBD\x7F"),
        "\xEF\xB7\x8F\xEF\xB7\xB0\xEF\xBF\xBD\x7F");
}

TEST(DecimalInteger, IsTheWholeText)
{
    struct Case {
        const char* text;
        std::optional<std::int64_t> number;
    };
    const Case cases[]{
        {"100", 100},
        {"-7", -7},
        {"9223372036854775807", 9223372036854775807},
        {"9223372036854775808", std::nullopt},
        {"", std::nullopt},
        {"7 ", std::nullopt},
        {"0x7", std::nullopt},
    };
    for (const auto& [text, number] : cases)
        EXPECT_EQ(decimalInteger(text), number) << text;
}
