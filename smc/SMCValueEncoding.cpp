#include "smc/SMCValueEncoding.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

namespace orv {

namespace {

std::string bigEndian(std::uint32_t number, std::size_t count)
{
    std::string bytes;
    while (count-- > 0)
        bytes += static_cast<char>(number >> 8 * count);
    return bytes;
}

std::uint32_t nearest(double number, double low, double high)
{
    const auto integer = static_cast<std::int64_t>(std::round(std::clamp(number, low, high)));
    return static_cast<std::uint32_t>(integer);
}

std::string littleEndianFloat(double number)
{
    constexpr double largest = std::numeric_limits<float>::max();
    const auto bits = std::bit_cast<std::uint32_t>(static_cast<float>(std::clamp(number, -largest, largest)));
    auto bytes = bigEndian(bits, 4);
    std::ranges::reverse(bytes);
    return bytes;
}

} // namespace

std::optional<std::string> encodeValue(const SMCValueFormat& format, double number)
{
    const double scaled = number * static_cast<double>(1u << format.fractionBits);
    switch (format.form) {
    case SMCNumberForm::none:
        return std::nullopt;
    case SMCNumberForm::unsigned8:
        return bigEndian(nearest(scaled, 0, UINT8_MAX), 1);
    case SMCNumberForm::unsigned16:
        return bigEndian(nearest(scaled, 0, UINT16_MAX), 2);
    case SMCNumberForm::unsigned32:
        return bigEndian(nearest(scaled, 0, UINT32_MAX), 4);
    case SMCNumberForm::signed16:
        return bigEndian(nearest(scaled, INT16_MIN, INT16_MAX), 2);
    case SMCNumberForm::float32:
        return littleEndianFloat(number);
    }
    return std::nullopt;
}

} // namespace orv
