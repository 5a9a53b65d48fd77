#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace orv {

/// The bytes of a text as one integer, the first one the most significant: "TC0P" is 0x54433050. Only the last four
/// bytes of a longer text count.
constexpr std::uint32_t fourCharCode(std::string_view text)
{
    std::uint32_t code = 0;
    for (const char character : text)
        code = code << 8 | static_cast<unsigned char>(character);
    return code;
}

/// Four characters, most significant byte first; each byte is the code point of the same value, so a byte above 0x7F
/// takes two bytes of the UTF-8 result.
std::string fourCharString(std::uint32_t code);

} // namespace orv
