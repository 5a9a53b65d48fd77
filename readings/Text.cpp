#include "readings/Text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <system_error>

namespace orv {

namespace {

// The well-formed sequences by their first byte: how many bytes follow, and the range of the second one,
// which alone excludes overlong forms, surrogates and values past U+10FFFF (Unicode, table 3-7).
struct SequenceForm {
    unsigned char firstLow;
    unsigned char firstHigh;
    std::size_t length;
    unsigned char secondLow;
    unsigned char secondHigh;
};

constexpr std::array<SequenceForm, 8> multiByteForms{{
    {0xC2, 0xDF, 2, 0x80, 0xBF},
    {0xE0, 0xE0, 3, 0xA0, 0xBF},
    {0xE1, 0xEC, 3, 0x80, 0xBF},
    {0xED, 0xED, 3, 0x80, 0x9F},
    {0xEE, 0xEF, 3, 0x80, 0xBF},
    {0xF0, 0xF0, 4, 0x90, 0xBF},
    {0xF1, 0xF3, 4, 0x80, 0xBF},
    {0xF4, 0xF4, 4, 0x80, 0x8F},
}};

const SequenceForm* formOf(unsigned char first)
{
    for (const auto& form : multiByteForms) {
        if (first >= form.firstLow && first <= form.firstHigh)
            return &form;
    }
    return nullptr;
}

bool isNoncharacter(char32_t codePoint)
{
    return (codePoint >= 0xFDD0 && codePoint <= 0xFDEF) || (codePoint & 0xFFFE) == 0xFFFE;
}

// What every text may hold, and mostly holds: these bytes need no decoding.
bool isPlain(char byte)
{
    return byte != 0 && static_cast<unsigned char>(byte) < 0x80;
}

template <typename Accept> std::string textWhere(std::string_view bytes, Accept accept)
{
    std::string text;
    text.reserve(bytes.size());
    while (!bytes.empty()) {
        const auto plain = static_cast<std::size_t>(std::ranges::find_if_not(bytes, isPlain) - bytes.begin());
        text += bytes.substr(0, plain);
        bytes.remove_prefix(plain);
        if (bytes.empty())
            break;
        const auto [codePoint, length] = decodeCharacter(bytes);
        text += codePoint && accept(*codePoint) ? bytes.substr(0, length) : replacementCharacter;
        bytes.remove_prefix(length);
    }
    return text;
}

} // namespace

DecodedCharacter decodeCharacter(std::string_view text)
{
    const auto byte = [&](std::size_t index) { return static_cast<unsigned char>(text[index]); };
    if (byte(0) < 0x80)
        return {byte(0), 1};
    const auto* form = formOf(byte(0));
    if (!form)
        return {std::nullopt, 1};
    char32_t codePoint = byte(0) & (0xFFu >> (form->length + 1));
    for (std::size_t index = 1; index < form->length; ++index) {
        const unsigned char low = index == 1 ? form->secondLow : 0x80;
        const unsigned char high = index == 1 ? form->secondHigh : 0xBF;
        if (index == text.size() || byte(index) < low || byte(index) > high)
            return {std::nullopt, index};
        codePoint = codePoint << 6 | (byte(index) & 0x3Fu);
    }
    return {codePoint, form->length};
}

std::string repairedUTF8(std::string_view bytes)
{
    return textWhere(bytes, [](char32_t) { return true; });
}

std::string textWithoutNoncharacters(std::string_view bytes)
{
    return textWhere(bytes, [](char32_t codePoint) { return codePoint != 0 && !isNoncharacter(codePoint); });
}

std::size_t characterCount(std::string_view text)
{
    std::size_t count = 0;
    for (; !text.empty(); ++count)
        text.remove_prefix(isPlain(text.front()) ? 1 : decodeCharacter(text).length);
    return count;
}

std::optional<std::int64_t> decimalInteger(std::string_view text)
{
    std::int64_t number = 0;
    const auto* begin = text.data();
    const auto* end = begin + text.size();
    const auto [stop, error] = std::from_chars(begin, end, number);
    return error == std::errc() && stop == end ? std::optional(number) : std::nullopt;
}

} // namespace orv
