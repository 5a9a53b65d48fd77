#pragma once

#include "hardware/Hardware.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace orv {

/// The input, read from the front; zeros follow its end.
class Answers {
public:
    explicit Answers(std::string_view input)
        : rest(input)
    {
    }

    std::uint8_t byte()
    {
        const auto first = rest.empty() ? 0 : static_cast<std::uint8_t>(rest.front());
        rest.remove_prefix(rest.empty() ? 0 : 1);
        return static_cast<std::uint8_t>(first);
    }

    template <typename Number> Number number()
    {
        std::array<std::uint8_t, sizeof(Number)> bytes;
        std::ranges::generate(bytes, [&] { return byte(); });
        return std::bit_cast<Number>(bytes);
    }

    /// At most so many bytes, their number first.
    std::string text(std::size_t most)
    {
        const auto length = byte() % (most + 1);
        const std::string result(rest.substr(0, length));
        rest.remove_prefix(result.size());
        return result;
    }

    bool isAtEnd() const { return rest.empty(); }

private:
    std::string_view rest;
};

// A fan speed that is no number stops the helper on purpose: such answers are not given.
inline void keepFanSpeedInRange(std::uint32_t key, Hardware::Bytes& bytes)
{
    float speed = 0;
    std::memcpy(&speed, bytes.data(), sizeof(speed));
    if (key >> 24 == 'F' && !(speed > -9e18f && speed < 9e18f))
        bytes[3] &= 0x3F;
}

} // namespace orv
