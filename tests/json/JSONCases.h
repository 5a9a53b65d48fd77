#pragma once

#include "readings/Value.h"

#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orv {

/// What a reader makes of a text: a value, or nothing when it refuses it.
using JSONOutcome = std::optional<Value>;

/// One text for every platform's reader.
struct JSONCase {
    std::string name;
    std::string bytes;
    JSONOutcome expected;
    std::optional<JSONOutcome> onFoundation = std::nullopt; // where Foundation's reader differs
};

inline Value arrayOf(Value element)
{
    return Array{std::move(element)};
}

inline Value textArray(std::string text)
{
    return arrayOf(std::move(text));
}

inline Value objectOf(std::string key, Value value)
{
    return Dictionary({{std::move(key), std::move(value)}});
}

/// Every byte of the text followed by others that are zero, which is what UTF-16 and UTF-32 make of ASCII.
inline std::string widened(std::string_view text, std::size_t width)
{
    std::string bytes;
    for (const char character : text) {
        bytes += character;
        bytes.append(width - 1, '\0');
    }
    return bytes;
}

inline std::string nestedArrays(std::size_t depth)
{
    return std::string(depth, '[') + std::string(depth, ']');
}

inline Value nestedArrayValue(std::size_t depth)
{
    Value value = Array();
    while (--depth > 0)
        value = arrayOf(std::move(value));
    return value;
}

inline std::vector<JSONCase> topLevelCases()
{
    return {
        {"empty object", "{}", Dictionary()},
        {"empty array", "[]", Array()},
        {"white space around", " \t\r\n[]\n ", Array()},
        {"number alone", "5", std::nullopt},
        {"text alone", R"("a")", std::nullopt},
        {"null alone", "null", std::nullopt},
        {"nothing", "", std::nullopt},
        {"only white space", " \n", std::nullopt},
        {"second value", "[1][2]", std::nullopt},
        {"trailing garbage", "{} x", std::nullopt},
        {"cut off", R"({"a": [1, 2)", std::nullopt},
        {"UTF-8 with a mark", "\xEF\xBB\xBF[1]", arrayOf(std::int64_t{1})},
        {"UTF-16 with a mark", "\xFF\xFE" + widened("[1]", 2), std::nullopt, arrayOf(std::int64_t{1})},
        {"UTF-16 without", widened("[1]", 2), std::nullopt, arrayOf(std::int64_t{1})},
        {"UTF-32 without a mark", widened("[1]", 4), std::nullopt, arrayOf(std::int64_t{1})},
    };
}

inline std::vector<JSONCase> textCases()
{
    using namespace std::string_literals;
    return {
        {"escapes", R"(["\"\\\/\b\f\n\r\t"])", textArray("\"\\/\b\f\n\r\t")},
        {"escaped letter", R"(["\u00e9"])", textArray("\xC3\xA9")},
        {"escaped pair", R"(["\ud83d\ude00"])", textArray("\xF0\x9F\x98\x80")},
        {"escaped NUL", R"(["a\u0000b"])", textArray("a\0b"s)},
        {"unescaped UTF-8", "[\"\xF0\x9F\x98\x80\"]", textArray("\xF0\x9F\x98\x80")},
        {"high surrogate alone", R"(["\ud83d"])", std::nullopt},
        {"low surrogate alone", R"(["\ude00"])", std::nullopt},
        {"invalid UTF-8", "[\"\xFF\"]", std::nullopt},
        {"overlong UTF-8", "[\"\xC0\xAF\"]", std::nullopt},
        {"surrogate in UTF-8", "[\"\xED\xA0\x80\"]", std::nullopt},
        {"unknown escape", R"(["\x"])", std::nullopt},
        {"bare control character", "[\"\x01\"]", std::nullopt},
    };
}

inline std::vector<JSONCase> numberCases()
{
    using Signed = std::numeric_limits<std::int64_t>;
    return {
        {"zero", "[0]", arrayOf(std::int64_t{0})},
        {"largest signed", "[9223372036854775807]", arrayOf(Signed::max())},
        {"smallest signed", "[-9223372036854775808]", arrayOf(Signed::min())},
        {"first unsigned", "[9223372036854775808]", arrayOf(std::uint64_t{9223372036854775808U})},
        {"largest unsigned", "[18446744073709551615]", arrayOf(std::numeric_limits<std::uint64_t>::max())},
        {"beyond unsigned", "[18446744073709551616]", arrayOf(18446744073709551616.0)},
        {"beyond signed", "[-9223372036854775809]", arrayOf(-9223372036854775808.0)},
        {"whole with a point", "[40.0]", arrayOf(40.0)},
        {"fraction", "[-1.5]", arrayOf(-1.5)},
        {"exponent", "[25e-1]", arrayOf(2.5)},
        {"too large for a double", "[1e400]", std::nullopt},
        {"leading zero", "[01]", std::nullopt},
        {"no digit after the point", "[1.]", std::nullopt},
        {"no digit before the point", "[.5]", std::nullopt},
        {"plus sign", "[+1]", std::nullopt},
        {"not a number", "[NaN]", std::nullopt},
    };
}

inline std::vector<JSONCase> structureCases()
{
    return {
        {"true", "[true]", arrayOf(true)},
        {"false", R"({"a": false})", objectOf("a", false)},
        {"null", R"({"a": null})", objectOf("a", Value())},
        {"equal keys", R"({"a": 1, "a": 2})", objectOf("a", std::int64_t{1})},
        {"two keys", R"({"b": 1, "a": 2})", Dictionary({{"a", std::int64_t{2}}, {"b", std::int64_t{1}}})},
        {"nested", R"({"a": [{"b": "c"}]})", objectOf("a", arrayOf(objectOf("b", std::string("c"))))},
        {"trailing comma in an array", "[1,]", std::nullopt, arrayOf(std::int64_t{1})},
        {"trailing comma in an object", R"({"a": 1,})", std::nullopt, objectOf("a", std::int64_t{1})},
        {"missing comma", "[1 2]", std::nullopt},
        {"key that is no text", "{1: 2}", std::nullopt},
        {"single quotes", "['a']", std::nullopt},
        {"comment", "[1] // one", std::nullopt},
        {"deepest", nestedArrays(512), nestedArrayValue(512)},
        {"too deep", nestedArrays(513), std::nullopt},
        {"far too deep", std::string(100'000, '['), std::nullopt},
    };
}

inline std::vector<JSONCase> jsonCases()
{
    std::vector<JSONCase> cases;
    for (auto& group : {topLevelCases(), textCases(), numberCases(), structureCases()})
        cases.insert(cases.end(), group.begin(), group.end());
    return cases;
}

} // namespace orv
