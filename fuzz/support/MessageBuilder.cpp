#include "fuzz/support/MessageBuilder.h"

namespace orv {

void MessageBuilder::appendText(const std::vector<const char*>& texts)
{
    const auto place = answers.byte() % (texts.size() + 1);
    const auto other = answers.text(20);
    append("s", place < texts.size() ? texts[place] : other.c_str());
}

void MessageBuilder::appendProperties()
{
    array("{sv}", 6, [&] {
        container('e', "sv", [&] {
            appendText();
            appendVariant();
        });
    });
}

void MessageBuilder::appendVariant(int depth)
{
    constexpr int deepest = 8;
    switch (answers.byte() % 7) {
    case 0:
        return container('v', "s", [&] { appendText(); });
    case 1:
        return container('v', "b", [&] { append("b", answers.byte() % 2); });
    case 2:
        return container('v', "y", [&] { append("y", answers.byte()); });
    case 3:
        return container('v', "d", [&] { append("d", answers.number<double>()); });
    case 4:
        return container('v', "a{sv}", [&] { appendProperties(); });
    case 5:
        return container('v', "h", [&] { append("h", 0); });
    default:
        return container('v', depth < deepest ? "v" : "u",
            [&] { depth < deepest ? appendVariant(depth + 1) : append("u", answers.number<std::uint32_t>()); });
    }
}

} // namespace orv
