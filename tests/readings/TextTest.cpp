#include "readings/Text.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

using namespace orv;

TEST(RepairedUTF8, ReplacesEachInvalidSequenceOnce)
{
    struct Case {
        std::string bytes;
        std::string text;
    };
    const Case cases[]{
        {"plain äöü € 😀", "plain äöü € 😀"}, {std::string("a\0b", 3), std::string("a\0b", 3)}, {"\x80", "�"},
        {"a\xC3", "a�"}, {"\xE2\x82", "�"}, // a sequence that breaks off is one fault …
        {"\xE2\x82z", "�z"}, {"\xF0\x9F\x98\xF0\x9F\x98\x80", "�😀"},
        {"\xC0\xAF", "��"}, // … bytes that can begin nothing are one each
        {"\xE0\x80\xAF", "���"}, {"\xED\xA0\x80", "���"}, // a surrogate
        {"\xF4\x90\x80\x80", "����"}, // past U+10FFFF
        {"\xF5\xFF", "��"},
        {"\xC1\xBF\xE0\x9F\xBF\xF0\x8F\xBF\xBF", "���������"}, // overlong, all but the shortest form of each length
    };
    for (const auto& [bytes, text] : cases)
        EXPECT_EQ(repairedUTF8(bytes), text);
}

TEST(DecodeCharacter, ReadsTheFirstAndTheLastOfEachForm)
{
    struct Case {
        std::string_view bytes;
        char32_t codePoint;
    };
    const Case cases[]{{"\x7F", 0x7F}, {"\xC2\x80", 0x80}, {"\xDF\xBF", 0x7FF}, {"\xE0\xA0\x80", 0x800},
        {"\xE0\xBF\xBF", 0xFFF}, {"\xE1\x80\x80", 0x1000}, {"\xEC\xBF\xBF", 0xCFFF}, {"\xED\x80\x80", 0xD000},
        {"\xED\x9F\xBF", 0xD7FF}, {"\xEE\x80\x80", 0xE000}, {"\xEF\xBF\xBF", 0xFFFF}, {"\xF0\x90\x80\x80", 0x10000},
        {"\xF0\xBF\xBF\xBF", 0x3FFFF}, {"\xF1\x80\x80\x80", 0x40000}, {"\xF3\xBF\xBF\xBF", 0xFFFFF},
        {"\xF4\x80\x80\x80", 0x100000}, {"\xF4\x8F\xBF\xBF", 0x10FFFF}};
    for (const auto& [bytes, codePoint] : cases) {
        const auto decoded = decodeCharacter(std::string(bytes) + "\x80");
        EXPECT_EQ(decoded.codePoint, codePoint);
        EXPECT_EQ(decoded.length, bytes.size());
    }
}

TEST(CharacterCount, CountsAnInvalidSequenceOnce)
{
    struct Case {
        std::string_view bytes;
        std::size_t characters;
    };
    const Case cases[]{{"", 0}, {"TC0P", 4}, {{"T\0P", 3}, 3}, {"é€😀", 3}, {"\xE2\x82z", 2}, {"\xFF\xFF", 2}};
    for (const auto& [bytes, characters] : cases)
        EXPECT_EQ(characterCount(bytes), characters);
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
