#include "orvctl/views/Printable.h"

#include "orvctl/views/ColumnWidth.h"
#include "readings/Text.h"

#include <algorithm>

namespace orv {

std::string printable(std::string_view text)
{
    const auto isPlain = [](char character) { return character >= 0x20 && character < 0x7F; };
    const auto plain = std::ranges::find_if_not(text, isPlain); // mostly all of it
    std::string result(text.begin(), plain);
    text.remove_prefix(result.size());
    while (!text.empty()) {
        const auto [character, length] = decodeCharacter(text);
        const bool isPrinted = character && columnsOf(*character);
        result += isPrinted ? text.substr(0, length) : std::string_view("?");
        text.remove_prefix(length);
    }
    return result;
}

} // namespace orv
