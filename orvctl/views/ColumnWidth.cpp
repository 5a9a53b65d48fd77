#include "orvctl/views/ColumnWidth.h"

#include "readings/Text.h"

#include <algorithm>

#include <locale.h>
#include <wchar.h>
#if __has_include(<xlocale.h>)
#include <xlocale.h> // macOS
#endif

namespace orv {

namespace {

// Of the kinds of characters alone: numbers and sentences stay as they are.
locale_t newUTF8Locale()
{
    for (const auto* name : {"C.UTF-8", "en_US.UTF-8", "UTF-8"}) {
        if (auto* const locale = newlocale(LC_CTYPE_MASK, name, nullptr))
            return locale;
    }
    return nullptr;
}

int widthInUTF8(char32_t character)
{
    static const locale_t locale = newUTF8Locale();
    if (!locale)
        return 1;
    auto* const former = uselocale(locale);
    const int width = wcwidth(static_cast<wchar_t>(character));
    uselocale(former);
    return width;
}

} // namespace

std::optional<std::size_t> columnsOf(char32_t character)
{
    if (character < 0x20 || (character >= 0x7F && character < 0xA0))
        return std::nullopt;
    if (character < 0x7F)
        return 1;
    const int width = widthInUTF8(character);
    return width < 0 ? std::nullopt : std::optional(static_cast<std::size_t>(width));
}

std::size_t columnCount(std::string_view text)
{
    const auto isPlain = [](char character) { return character >= 0x20 && character < 0x7F; };
    const auto plain = std::ranges::find_if_not(text, isPlain); // mostly all of it
    auto columns = static_cast<std::size_t>(plain - text.begin());
    text.remove_prefix(columns);
    while (!text.empty()) {
        const auto [character, length] = decodeCharacter(text);
        columns += character ? columnsOf(*character).value_or(1) : 1;
        text.remove_prefix(length);
    }
    return columns;
}

} // namespace orv
