#include "linux/drivers/AttributeText.h"

#include "smc/FourCharCode.h"

#include <charconv>
#include <cstddef>
#include <system_error>

namespace orv {

namespace {

std::string_view withoutNewline(std::string_view text)
{
    return text.ends_with('\n') ? text.substr(0, text.size() - 1) : text;
}

} // namespace

std::optional<std::int64_t> attributeNumber(std::string_view text)
{
    std::int64_t number = 0;
    const auto* begin = text.data();
    const auto* end = begin + text.size();
    const auto [stop, error] = std::from_chars(begin, end, number);
    if (error != std::errc() || (stop != end && *stop != '\n'))
        return std::nullopt;
    return number;
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
