#include "bluetooth/IntegerValue.h"

#include "readings/Text.h"

#include <charconv>
#include <limits>
#include <system_error>

namespace orv {

namespace {

bool isWhiteSpace(char32_t character)
{
    return character == 0x20 || (character >= 0x09 && character <= 0x0D) || character == 0xA0
        || (character >= 0x2000 && character <= 0x200B) || character == 0x3000;
}

std::string_view withoutLeadingWhiteSpace(std::string_view text)
{
    while (!text.empty()) {
        const auto [character, length] = decodeCharacter(text);
        if (!character || !isWhiteSpace(*character))
            break;
        text.remove_prefix(length);
    }
    return text;
}

} // namespace

std::int64_t integerValue(std::string_view text)
{
    text = withoutLeadingWhiteSpace(text);
    const bool isNegative = text.starts_with('-');
    if (text.starts_with('+')) {
        text.remove_prefix(1);
        if (text.starts_with('-')) // from_chars would take the second sign
            return 0;
    }
    std::int64_t number = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
    if (result.ec != std::errc::result_out_of_range)
        return number;
    using Limits = std::numeric_limits<std::int64_t>;
    return isNegative ? Limits::min() : Limits::max();
}

} // namespace orv
