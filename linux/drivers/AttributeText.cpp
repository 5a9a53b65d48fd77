#include "linux/drivers/AttributeText.h"

#include "readings/Text.h"
#include "smc/FourCharCode.h"

#include <cstddef>

namespace orv {

namespace {

std::string_view withoutNewline(std::string_view text)
{
    return text.ends_with('\n') ? text.substr(0, text.size() - 1) : text;
}

} // namespace

std::optional<std::int64_t> attributeNumber(std::string_view text)
{
    return decimalInteger(text.substr(0, text.find('\n')));
}

std::optional<std::uint32_t> attributeCode(std::string_view text)
{
    constexpr std::size_t length = 4;
    const auto characters = withoutNewline(text);
    if (characters.empty() || characters.size() > length)
        return std::nullopt;
    return fourCharCode(characters) << 8 * (length - characters.size());
}

} // namespace orv
