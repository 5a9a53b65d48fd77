#include "json/JSONWriter.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <string_view>
#include <variant>
#include <vector>

namespace orv {

namespace {

class Writer {
public:
    Writer(KeyOrder keyOrder, Spacing spacing)
        : order(keyOrder)
        , colon(spacing == Spacing::none ? ":" : ": ")
        , comma(spacing == Spacing::none ? "," : ", ")
    {
    }

    std::string text;

    void write(const Value& value)
    {
        std::visit([&](const auto& content) { write(content); }, value.data);
    }

private:
    void write(std::nullptr_t) { text += "null"; }
    void write(bool truth) { text += truth ? "true" : "false"; }
    void write(std::int64_t number) { fmt::format_to(std::back_inserter(text), "{}", number); }
    void write(std::uint64_t number) { fmt::format_to(std::back_inserter(text), "{}", number); }

    void write(double number)
    {
        if (!std::isfinite(number)) {
            text += std::isnan(number) ? "null" : number > 0 ? "1e999" : "-1e999";
            return;
        }
        const auto digits = fmt::format("{}", number);
        text += digits;
        if (digits.find_first_of(".e") == std::string::npos)
            text += ".0";
    }

    void write(const std::string& content)
    {
        text += '"';
        for (const char character : content)
            writeCharacter(character);
        text += '"';
    }

    void writeCharacter(char character)
    {
        if (character == '"' || character == '\\')
            text += '\\';
        if (static_cast<unsigned char>(character) < 0x20)
            fmt::format_to(std::back_inserter(text), "\\u{:04x}", static_cast<unsigned>(character));
        else
            text += character;
    }

    void write(const Array& array)
    {
        writeContainer('[', ']', array, [&](const Value& value) { write(value); });
    }

    void write(const Dictionary& dictionary)
    {
        std::vector<const Member*> members;
        for (const auto& member : dictionary)
            members.push_back(&member);
        if (order == KeyOrder::sorted)
            std::ranges::sort(members, {}, &Member::key);
        writeContainer('{', '}', members, [&](const Member* member) {
            write(member->key);
            text += colon;
            write(member->value);
        });
    }

    template <typename Items, typename WriteItem>
    void writeContainer(char begin, char end, const Items& items, WriteItem writeItem)
    {
        text += begin;
        std::string_view separator;
        for (const auto& item : items) {
            text += separator;
            separator = comma;
            writeItem(item);
        }
        text += end;
    }

    const KeyOrder order;
    const std::string_view colon;
    const std::string_view comma;
};

} // namespace

std::string writeJSON(const Value& value, KeyOrder order, Spacing spacing)
{
    Writer writer(order, spacing);
    writer.write(value);
    return std::move(writer.text);
}

} // namespace orv
