#include "smc/SMCValueDecoding.h"

#include "smc/FourCharCode.h"

#include <algorithm>
#include <bit>

namespace orv {

using enum SMCNumberForm;

constexpr std::size_t codeLength = 4;

constexpr std::array<SMCValueFormat, 31> smcValueFormats{{
    {SMCDataType::flt, "flt ", float32, 4},
    {SMCDataType::fp1f, "fp1f", unsigned16, 2, 15},
    {SMCDataType::fp4c, "fp4c", unsigned16, 2, 12},
    {SMCDataType::fp5b, "fp5b", unsigned16, 2, 11},
    {SMCDataType::fp6a, "fp6a", unsigned16, 2, 10},
    {SMCDataType::fp79, "fp79", unsigned16, 2, 9},
    {SMCDataType::fp88, "fp88", unsigned16, 2, 8},
    {SMCDataType::fpa6, "fpa6", unsigned16, 2, 6},
    {SMCDataType::fpc4, "fpc4", unsigned16, 2, 4},
    {SMCDataType::fpe2, "fpe2", unsigned16, 2, 2},
    {SMCDataType::sp1e, "sp1e", signed16, 2, 14},
    {SMCDataType::sp3c, "sp3c", signed16, 2, 12},
    {SMCDataType::sp4b, "sp4b", signed16, 2, 11},
    {SMCDataType::sp5a, "sp5a", signed16, 2, 10},
    {SMCDataType::sp69, "sp69", signed16, 2, 9},
    {SMCDataType::sp78, "sp78", signed16, 2, 8},
    {SMCDataType::sp87, "sp87", signed16, 2, 7},
    {SMCDataType::sp96, "sp96", signed16, 2, 6},
    {SMCDataType::spb4, "spb4", signed16, 2, 4},
    {SMCDataType::spf0, "spf0", unsigned16, 2}, // signed by name, but read unsigned on purpose
    {SMCDataType::ui8, "ui8 ", unsigned8},
    {SMCDataType::ui16, "ui16", unsigned16},
    {SMCDataType::ui32, "ui32", unsigned32},
    {SMCDataType::si8, "si8 "},
    {SMCDataType::si16, "si16"},
    {SMCDataType::pwm, "{pwm"},
    {SMCDataType::lso, "{lso"},
    {SMCDataType::ala, "{ala"},
    {SMCDataType::flag, "flag"},
    {SMCDataType::fds, "{fds"},
    {SMCDataType::ch8, "ch8*"},
}};

namespace {

constexpr bool rowsFollowTheEnumeration()
{
    for (std::size_t row = 0; row < smcValueFormats.size(); ++row) {
        if (static_cast<std::size_t>(smcValueFormats[row].type) != row)
            return false;
    }
    return true;
}

// The last character of a fixed-point code is the number of fraction bits in hexadecimal.
constexpr bool fractionBitsFollowTheCodes()
{
    return std::ranges::all_of(smcValueFormats, [](const SMCValueFormat& format) {
        const auto digit = format.code[3];
        const bool isFixedPoint = format.requiredSize == 2;
        return !isFixedPoint
            || format.fractionBits == static_cast<unsigned>(digit <= '9' ? digit - '0' : digit - 'a' + 10);
    });
}

static_assert(rowsFollowTheEnumeration() && fractionBitsFollowTheCodes());

struct CodedRow {
    std::uint32_t code = 0;
    const SMCValueFormat* row = nullptr;
};

// Every reading looks here: codes are compared as integers.
constexpr auto rowsByCode = [] {
    std::array<CodedRow, smcValueFormats.size()> rows{};
    std::ranges::transform(smcValueFormats, rows.begin(),
        [](const SMCValueFormat& row) { return CodedRow{fourCharCode(row.code), &row}; });
    std::ranges::sort(rows, {}, &CodedRow::code);
    return rows;
}();

std::uint32_t bigEndian(const SMCVal& val, std::size_t count)
{
    std::uint32_t number = 0;
    for (std::size_t index = 0; index < count; ++index)
        number = number << 8 | val.bytes[index];
    return number;
}

float littleEndianFloat(const SMCVal& val)
{
    std::uint32_t bits = 0;
    for (std::size_t index = 4; index-- > 0;)
        bits = bits << 8 | val.bytes[index];
    return std::bit_cast<float>(bits);
}

constexpr DecodedValue fault(SMCValueFault reason)
{
    return {.fault = reason};
}

constexpr std::size_t bytesOf(SMCNumberForm form)
{
    switch (form) {
    case none:
        return 0;
    case unsigned8:
        return 1;
    case unsigned16:
    case signed16:
        return 2;
    case unsigned32:
    case float32:
        break;
    }
    return 4;
}

DecodedValue number(const SMCVal& val, SMCNumberForm form)
{
    if (form == float32)
        return {static_cast<double>(littleEndianFloat(val))};
    const auto natural = bigEndian(val, bytesOf(form));
    if (form != signed16)
        return {static_cast<double>(natural)};
    const auto integer = static_cast<std::int16_t>(natural);
    return integer < 0 ? fault(SMCValueFault::negative) : DecodedValue{static_cast<double>(integer)};
}

/// How a value is read, or why it holds no number whatever its bytes are.
struct FoundFormat {
    const SMCValueFormat* format = nullptr;
    SMCValueFault fault = SMCValueFault::none;
};

FoundFormat formatOf(const SMCVal& val)
{
    if (val.dataSize == 0)
        return {.fault = SMCValueFault::empty};
    const auto* format = smcValueFormat(val.dataType);
    if (!format || format->form == none)
        return {.fault = SMCValueFault::noNumber};
    if (format->requiredSize != 0 && format->requiredSize != val.dataSize)
        return {.fault = SMCValueFault::wrongSize};
    return {.format = format};
}

} // namespace

const SMCValueFormat* smcValueFormat(std::string_view code)
{
    if (code.size() != codeLength)
        return nullptr;
    const auto number = fourCharCode(code);
    const auto found = std::ranges::lower_bound(rowsByCode, number, {}, &CodedRow::code);
    return found != rowsByCode.end() && found->code == number ? found->row : nullptr;
}

DecodedValue decode(const SMCVal& val)
{
    const auto [format, reason] = formatOf(val);
    if (!format)
        return fault(reason);
    auto decoded = number(val, format->form);
    decoded.number /= static_cast<double>(1u << format->fractionBits);
    return decoded;
}

std::optional<double> decodeValue(const SMCVal& val)
{
    const auto decoded = decode(val);
    return decoded.fault == SMCValueFault::none ? std::optional(decoded.number) : std::nullopt;
}

std::size_t bytesOfNumber(const SMCVal& val)
{
    const auto* format = formatOf(val).format;
    return format ? bytesOf(format->form) : 0;
}

} // namespace orv
