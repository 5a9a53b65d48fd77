#pragma once

#include "smc/SMCVal.h"

#include <array>
#include <cstddef>
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

/// Why a value is no number: the first of these that holds.
enum class SMCValueFault : std::uint8_t {
    none,
    empty, // a size of 0
    noNumber, // a type that is not ours, or holds no number
    wrongSize, // not the one that the type requires
    negative, // a signed fixed-point number below zero
};

struct DecodedValue {
    double number = 0; // neither rounded nor clamped; means nothing when there is a fault
    SMCValueFault fault = SMCValueFault::none;
};

/// The value as a number, or why it is none.
DecodedValue decode(const SMCVal& val);

/// The value as a number; nothing when it is none.
std::optional<double> decodeValue(const SMCVal& val);

/// How many of its first bytes the reading of a value uses; 0 when no number can come of its type and size.
std::size_t bytesOfNumber(const SMCVal& val);

} // namespace orv
