#include "orvctl/views/Printable.h"

#include "orvctl/views/ColumnWidth.h"
#include "readings/Text.h"

namespace orv {

std::string printable(std::string_view text)
{
    std::string result;
    while (!text.empty()) {
        const auto [character, length] = decodeCharacter(text);
        const bool isPrinted = character && columnsOf(*character);
        result += isPrinted ? text.substr(0, length) : std::string_view("?");
        text.remove_prefix(length);
    }
    return result;
}

} // namespace orv
