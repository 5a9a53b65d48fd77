#import "macos/FoundationValue.h"

#include "readings/Text.h"

#include <CoreFoundation/CoreFoundation.h>

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <system_error>
#include <utility>
#include <vector>

namespace orv {

namespace {

constexpr std::size_t depthLimit = 512; // the JSON reader's own

std::optional<Value> valueAtDepth(id object, std::size_t depth);

NSString* textOfUTF8(std::string_view bytes)
{
    return [[NSString alloc] initWithBytes:bytes.data() length:bytes.size() encoding:NSUTF8StringEncoding];
}

template <typename Integer> std::optional<Integer> wholeNumber(const std::string& digits)
{
    Integer number = 0;
    const auto* end = digits.data() + digits.size();
    const auto result = std::from_chars(digits.data(), end, number);
    return result.ec == std::errc() && result.ptr == end ? std::optional(number) : std::nullopt;
}

// The JSON reader gives decimal numbers for what it finds too long for a double; their accessors for integers are
// exact only up to 53 bits.
Value valueOfDecimal(NSDecimalNumber* number)
{
    const auto digits = coreText(number.stringValue);
    if (const auto integer = wholeNumber<std::int64_t>(digits))
        return *integer;
    if (const auto natural = wholeNumber<std::uint64_t>(digits))
        return *natural;
    return number.doubleValue;
}

Value valueOfNatural(std::uint64_t number)
{
    if (number > static_cast<std::uint64_t>(INT64_MAX))
        return number;
    return static_cast<std::int64_t>(number);
}

Value valueOfNumber(NSNumber* number)
{
    // Asked for by its type: a Boolean's objCType is that of a char.
    if (CFGetTypeID((__bridge CFTypeRef)number) == CFBooleanGetTypeID())
        return number.boolValue == YES;
    if ([number isKindOfClass:NSDecimalNumber.class])
        return valueOfDecimal(static_cast<NSDecimalNumber*>(number));
    switch (number.objCType[0]) {
    case 'd':
    case 'f':
        return number.doubleValue;
    case 'L':
    case 'Q':
        return valueOfNatural(number.unsignedLongLongValue);
    default:
        return std::int64_t{number.longLongValue};
    }
}

std::optional<Value> valueOfArray(NSArray* elements, std::size_t depth)
{
    Array array;
    array.reserve(elements.count);
    for (id element in elements) {
        auto value = valueAtDepth(element, depth);
        if (!value)
            return std::nullopt;
        array.push_back(std::move(*value));
    }
    return Value(std::move(array));
}

std::optional<Value> valueOfDictionary(NSDictionary* dictionary, std::size_t depth)
{
    std::vector<Member> members;
    members.reserve(dictionary.count);
    for (id key in dictionary) {
        auto value = valueAtDepth([dictionary objectForKey:key], depth);
        if (!value || ![key isKindOfClass:NSString.class])
            return std::nullopt;
        members.push_back({coreText(key), std::move(*value)});
    }
    return Value(Dictionary(std::move(members)));
}

std::optional<Value> valueAtDepth(id object, std::size_t depth)
{
    if ([object isKindOfClass:NSString.class])
        return Value(coreText(object));
    if ([object isKindOfClass:NSNumber.class])
        return valueOfNumber(object);
    if ([object isKindOfClass:NSNull.class])
        return Value();
    if (depth == depthLimit)
        return std::nullopt;
    if ([object isKindOfClass:NSArray.class])
        return valueOfArray(object, depth + 1);
    if ([object isKindOfClass:NSDictionary.class])
        return valueOfDictionary(object, depth + 1);
    return std::nullopt;
}

} // namespace

NSString* foundationText(std::string_view text)
{
    if (NSString* exact = textOfUTF8(text))
        return exact;
    NSString* repaired = textOfUTF8(repairedUTF8(text));
    return repaired ? repaired : @"";
}

std::string coreText(NSString* text)
{
    const char* bytes = text.UTF8String;
    if (!bytes)
        return {};
    // Counted, since a text may hold a NUL.
    return {bytes, [text lengthOfBytesUsingEncoding:NSUTF8StringEncoding]};
}

std::optional<Value> valueOfObject(id object)
{
    return valueAtDepth(object, 0);
}

} // namespace orv
