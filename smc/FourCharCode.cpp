#include "smc/FourCharCode.h"

namespace orv {

std::string fourCharString(std::uint32_t code)
{
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8) {
        const auto byte = static_cast<unsigned char>(code >> shift);
        if (byte >= 0x80)
            text += static_cast<char>(0xC0 | byte >> 6);
        text += static_cast<char>(byte >= 0x80 ? 0x80 | (byte & 0x3F) : byte);
    }
    return text;
}

} // namespace orv
