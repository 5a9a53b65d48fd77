#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace orv {

/// The bytes of a text as one integer, the first one the most significant: "TC0P" is 0x54433050. Only the last four
/// bytes of a longer text count.
constexpr std::uint32_t fourCharCode(std::string_view text)
{
    const auto byte = [&](std::size_t index) { return std::uint32_t{static_cast<unsigned char>(text[index])}; };
    if (text.size() == 4) // one load, where the loop takes twenty instructions
        return byte(0) << 24 | byte(1) << 16 | byte(2) << 8 | byte(3);
    std::uint32_t code = 0;
    for (const char character : text)
        code = code << 8 | static_cast<unsigned char>(character);
    return code;
}

/// Four characters, most significant byte first; each byte is the code point of the same value, so a byte above 0x7F
/// takes two bytes of the UTF-8 result.
std::string fourCharString(std::uint32_t code);

} // namespace orv
