#include "smc/SMCValueDecoding.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <initializer_list>
#include <optional>

using namespace orv;

namespace {

SMCVal value(const char* type, std::uint32_t size, std::initializer_list<std::uint8_t> bytes)
{
    SMCVal val{.key = "TEST", .dataSize = size, .dataType = type};
    std::ranges::copy(bytes, val.bytes.begin());
    return val;
}

} // namespace

TEST(DecodeValue, ReadsEachFormOfNumber)
{
    struct Case {
        SMCVal val;
        double number;
    };
    const Case cases[]{
        {value("sp78", 2, {0x2F, 0x80}), 47.5},
        {value("sp78", 2, {0x7F, 0xFF}), 127.99609375},
        {value("spf0", 2, {0xFF, 0xFF}), 65535},
        {value("fp1f", 2, {0xFF, 0xFF}), 65535.0 / 32768},
        {value("fp88", 2, {0x80, 0x01}), 128.00390625},
        {value("flt ", 4, {0x00, 0x00, 0xC8, 0x42}), 100},
        {value("flt ", 4, {0x00, 0x00, 0xC8, 0xC2}), -100},
        {value("ui8 ", 32, {0xFE, 0x01}), 254},
        {value("ui16", 2, {0x01, 0x02}), 258},
        {value("ui16", 1, {0x05}), 1280},
        {value("ui32", 4, {0x00, 0x00, 0x02, 0x9A}), 666},
        {value("ui32", 4, {0xFF, 0xFF, 0xFF, 0xFF}), 4294967295.0},
    };
    for (const auto& [val, number] : cases)
        EXPECT_EQ(decodeValue(val), number) << val.dataType << " " << number;
}

TEST(DecodeValue, GivesNothingForANegativeFixedPointNumber)
{
    for (const auto& format : smcValueFormats) {
        const auto val = value(std::string(format.code).c_str(), 2, {0xFF, 0x00});
        EXPECT_EQ(decodeValue(val).has_value(),
            format.form == SMCNumberForm::unsigned16 || format.form == SMCNumberForm::unsigned8
                || format.form == SMCNumberForm::unsigned32)
            << format.code;
    }
    EXPECT_EQ(decodeValue(value("sp78", 2, {0x80, 0x00})), std::nullopt);
}

TEST(DecodeValue, WantsTheSizeOfEachType)
{
    constexpr std::uint32_t any = 0;
    const double flt = static_cast<double>(std::bit_cast<float>(0x42563412u));
    struct Row {
        const char* type;
        std::uint32_t size;
        std::size_t used;
        std::optional<double> number; // of the bytes 12 34 56 42
    };
    const std::array<Row, 31> rows{{{"flt ", 4, 4, flt}, {"fp1f", 2, 2, 4660.0 / 32768}, {"fp4c", 2, 2, 4660.0 / 4096},
        {"fp5b", 2, 2, 4660.0 / 2048}, {"fp6a", 2, 2, 4660.0 / 1024}, {"fp79", 2, 2, 4660.0 / 512},
        {"fp88", 2, 2, 4660.0 / 256}, {"fpa6", 2, 2, 4660.0 / 64}, {"fpc4", 2, 2, 4660.0 / 16},
        {"fpe2", 2, 2, 4660.0 / 4}, {"sp1e", 2, 2, 4660.0 / 16384}, {"sp3c", 2, 2, 4660.0 / 4096},
        {"sp4b", 2, 2, 4660.0 / 2048}, {"sp5a", 2, 2, 4660.0 / 1024}, {"sp69", 2, 2, 4660.0 / 512},
        {"sp78", 2, 2, 4660.0 / 256}, {"sp87", 2, 2, 4660.0 / 128}, {"sp96", 2, 2, 4660.0 / 64},
        {"spb4", 2, 2, 4660.0 / 16}, {"spf0", 2, 2, 4660.0}, {"ui8 ", any, 1, 18.0}, {"ui16", any, 2, 4660.0},
        {"ui32", any, 4, 305419842.0}, {"si8 ", any, 0, {}}, {"si16", any, 0, {}}, {"{pwm", any, 0, {}},
        {"{lso", any, 0, {}}, {"{ala", any, 0, {}}, {"flag", any, 0, {}}, {"{fds", any, 0, {}}, {"ch8*", any, 0, {}}}};
    ASSERT_EQ(rows.size(), smcValueFormats.size());
    for (std::size_t index = 0; index < rows.size(); ++index) {
        const auto& [type, size, used, number] = rows[index];
        EXPECT_EQ(smcValueFormats[index].code, type);
        for (const std::uint32_t reported : {0u, 1u, 2u, 3u, 4u, 5u, 32u}) {
            const bool fits = reported != 0 && (size == any || reported == size);
            const auto val = value(type, reported, {0x12, 0x34, 0x56, 0x42});
            EXPECT_EQ(decodeValue(val), fits ? number : std::nullopt) << type << " of " << reported << " bytes";
            EXPECT_EQ(bytesOfNumber(val), fits ? used : 0) << type << " of " << reported << " bytes";
        }
    }
}

TEST(DecodeValue, GivesNothingForATypeThatHoldsNoNumber)
{
    for (const auto* type : {"si8 ", "si16", "{pwm", "{lso", "{ala", "flag", "{fds", "ch8*", "ioft", "si32", "hex_",
             "Flag", "sp2d", "spa5", "SP78", "flt", "ui8"})
        EXPECT_EQ(decodeValue(value(type, 2, {0x2F, 0x80})), std::nullopt) << type;
}
