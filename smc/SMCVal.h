#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace orv {

/// One key of the SMC with its raw value, as SMC::read fills it.
struct SMCVal {
    std::string key; // four characters
    std::uint32_t dataSize = 0; // as the SMC reports it, which may be more than `bytes` holds
    std::string dataType{}; // four characters, trailing blanks included
    std::array<std::uint8_t, 32> bytes{};
};

} // namespace orv
