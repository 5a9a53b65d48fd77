#include "json/ObjectEnd.h"

namespace orv {

std::optional<std::string_view> ObjectEnd::find(std::string_view piece)
{
    for (std::size_t place = 0; place < piece.size() && !isOther; ++place) {
        const char character = piece[place];
        if (isInText) {
            const bool ends = character == '"' && !isEscaped;
            isEscaped = character == '\\' && !isEscaped;
            isInText = !ends;
            continue;
        }
        isOther = !hasBegun && character != '{' && character != ' ' && character != '\t' && character != '\r';
        hasBegun = hasBegun || character == '{';
        isInText = character == '"';
        if (character == '{' || character == '[')
            ++depth;
        if ((character == '}' || character == ']') && --depth == 0)
            return piece.substr(place + 1);
    }
    return std::nullopt;
}

} // namespace orv
