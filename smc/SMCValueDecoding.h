#pragma once

#include "smc/SMCVal.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace orv {

/// The data types of the SMC that this program knows by name.
enum class SMCDataType : std::uint8_t {
    flt,
    fp1f,
    fp4c,
    fp5b,
    fp6a,
    fp79,
    fp88,
    fpa6,
    fpc4,
    fpe2,
    sp1e,
    sp3c,
    sp4b,
    sp5a,
    sp69,
    sp78,
    sp87,
    sp96,
    spb4,
    spf0,
    ui8,
    ui16,
    ui32,
    si8,
    si16,
    pwm,
    lso,
    ala,
    flag,
    fds,
    ch8,
};

/// How the bytes of a value form a number.
enum class SMCNumberForm : std::uint8_t {
    none, // the type is known, but holds no number for us
    unsigned8,
    unsigned16, // integers and fixed-point numbers are big-endian …
    unsigned32,
    signed16, // a negative one is no value
    float32, // … but a float is little-endian
};

struct SMCValueFormat {
    SMCDataType type;
    std::string_view code; // four characters, compared exactly
    SMCNumberForm form = SMCNumberForm::none;
    std::uint32_t requiredSize = 0; // 0: any but zero
    unsigned fractionBits = 0;
};

/// One row a type, in the order of SMCDataType.
extern const std::array<SMCValueFormat, 31> smcValueFormats;

/// The row of a four-character type code; nullptr when it is none of ours.
const SMCValueFormat* smcValueFormat(std::string_view code);

/// The value as a number, neither rounded nor clamped; nothing for a type without numbers, a size that does not fit
/// the type, or a negative signed fixed-point reading.
std::optional<double> decodeValue(const SMCVal& val);

} // namespace orv
