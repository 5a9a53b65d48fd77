#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace orv {

/// U+FFFD, which stands for whatever a text cannot hold.
inline constexpr std::string_view replacementCharacter = "\xEF\xBF\xBD";

/// One step through UTF-8 text.
struct DecodedCharacter {
    std::optional<char32_t> codePoint; // absent for an invalid sequence
    std::size_t length; // bytes taken, at least 1
};

/// The character at the start of non-empty UTF-8 text. An invalid sequence is its longest well-begun part.
DecodedCharacter decodeCharacter(std::string_view text);

/// The same bytes as valid UTF-8: each invalid sequence becomes one U+FFFD.
std::string repairedUTF8(std::string_view bytes);

/// repairedUTF8 without NUL and without noncharacters (U+FDD0 to U+FDEF, and U+xxFFFE and U+xxFFFF of every plane):
/// each becomes one U+FFFD.
std::string textWithoutNoncharacters(std::string_view bytes);

/// How many characters a UTF-8 text has.
std::size_t characterCount(std::string_view text);

/// The decimal integer that is the whole of a text; nothing when it is none or does not fit.
std::optional<std::int64_t> decimalInteger(std::string_view text);

} // namespace orv
