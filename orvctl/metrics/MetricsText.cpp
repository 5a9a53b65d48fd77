#include "orvctl/metrics/MetricsText.h"

#include "readings/Text.h"

#include <fmt/core.h>

#include <cmath>
#include <utility>

namespace orv {

namespace {

// Some readers end a line at any control character, or the whole text at a NUL.
constexpr bool isControl(char character)
{
    return (character >= 0 && character < ' ') || character == 0x7f;
}

std::string escaped(std::string_view value)
{
    std::string result;
    for (const char character : textWithoutNoncharacters(value)) {
        if (character == '\n')
            result += "\\n";
        else if (isControl(character))
            result += replacementCharacter;
        else if (character == '"' || character == '\\')
            (result += '\\') += character;
        else
            result += character;
    }
    return result;
}

std::string number(double value)
{
    if (std::isfinite(value))
        return fmt::format("{}", value);
    return std::isnan(value) ? "NaN" : value > 0 ? "+Inf" : "-Inf";
}

std::string heading(const MetricFamily& family)
{
    auto text = fmt::format("# HELP {0} {1}\n# TYPE {0} gauge\n", family.name, family.help);
    return family.unit.empty() ? text : text + fmt::format("# UNIT {} {}\n", family.name, family.unit);
}

std::string inBraces(std::initializer_list<MetricLabel> labels)
{
    std::string list;
    for (const auto& label : labels)
        list += fmt::format("{}{}=\"{}\"", list.empty() ? "{" : ",", label.name, escaped(label.value));
    return list.empty() ? list : list + '}';
}

} // namespace

void MetricsText::add(const MetricFamily& family, std::initializer_list<MetricLabel> labels, double value)
{
    if (std::exchange(begun, family.name) != family.name) {
        text += heading(family);
        written.clear();
    }
    const auto [series, isNew] = written.insert(inBraces(labels));
    if (isNew)
        text += fmt::format("{}{} {}\n", family.name, *series, number(value));
}

std::string MetricsText::finish()
{
    return std::exchange(text, {}) + "# EOF\n";
}

} // namespace orv
