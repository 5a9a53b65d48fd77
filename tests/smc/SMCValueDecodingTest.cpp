#include "smc/SMCValueDecoding.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>

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
        {value("sp1e", 2, {0x40, 0x00}), 1.0},
        {value("spb4", 2, {0x01, 0x08}), 16.5},
        {value("spf0", 2, {0xFF, 0xFF}), 65535},
        {value("fp1f", 2, {0xFF, 0xFF}), 65535.0 / 32768},
        {value("fpe2", 2, {0x1F, 0x40}), 2000},
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

TEST(DecodeValue, GivesNothingForASizeThatDoesNotFit)
{
    EXPECT_EQ(decodeValue(value("ui8 ", 0, {1})), std::nullopt);
    EXPECT_EQ(decodeValue(value("flt ", 2, {0, 0, 0xC8, 0x42})), std::nullopt);
    EXPECT_EQ(decodeValue(value("fpe2", 4, {0x1F, 0x40})), std::nullopt);
    EXPECT_EQ(decodeValue(value("sp78", 1, {0x2F})), std::nullopt);
}

TEST(DecodeValue, GivesNothingForATypeThatHoldsNoNumber)
{
    for (const auto* type : {"si8 ", "si16", "{pwm", "{lso", "{ala", "flag", "{fds", "ch8*", "ioft", "si32", "hex_",
             "Flag", "sp2d", "spa5", "SP78", "flt", "ui8"})
        EXPECT_EQ(decodeValue(value(type, 2, {0x2F, 0x80})), std::nullopt) << type;
}
