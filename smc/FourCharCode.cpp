#include "smc/FourCharCode.h"

namespace orv {

std::string fourCharString(std::uint32_t code)
{
    const auto byteAt = [code](int shift) { return static_cast<unsigned char>(code >> shift); };
    if ((code & 0x80808080) == 0) {
        const char characters[]{static_cast<char>(byteAt(24)), static_cast<char>(byteAt(16)),
            static_cast<char>(byteAt(8)), static_cast<char>(byteAt(0))};
        return std::string(characters, sizeof(characters));
    }
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8) {
        const auto byte = byteAt(shift);
        if (byte >= 0x80)
            text += static_cast<char>(0xC0 | byte >> 6);
        text += static_cast<char>(byte >= 0x80 ? 0x80 | (byte & 0x3F) : byte);
    }
    return text;
}

} // namespace orv
