#include "explain/Change.h"

#include <array>
#include <cstddef>
#include <cstdio>

namespace orv {

namespace {

struct ChangeText {
    ChangeKind kind;
    std::string_view identifier;
    std::string_view text; // '$' is the name, '#' the number, '&' how many more, '%' the degrees
};

constexpr std::array<ChangeText, 28> changeTexts{{
    {ChangeKind::listed, "listed", "if the SMC listed it"},
    {ChangeKind::readable, "readable", "if the SMC let it be read"},
    {ChangeKind::ofType, "type", "with the type \"$\""},
    {ChangeKind::ofSize, "size", "with a size of #"},
    {ChangeKind::above, "above", "above % °C"},
    {ChangeKind::keyGone, "key-gone", "if $ were gone"},
    {ChangeKind::efficiencyCores, "efficiency-cores", "with # efficiency cores"},
    {ChangeKind::performanceCores, "performance-cores", "with # performance cores"},
    {ChangeKind::otherChip, "other-chip", "on a chip other than the $"},
    {ChangeKind::codeGone, "code-gone", "if no HID service had the code $"},
    {ChangeKind::serviceWithCode, "service-with-code", "if a HID service had this code"},
    {ChangeKind::location, "location", "with a location in the catalogue, # ($) say"},
    {ChangeKind::eventAbove, "event-above", "with an event above % °C"},
    {ChangeKind::laterServicesGone, "later-services-gone", "if service #& were gone"},
    {ChangeKind::connected, "connected", "if it were among the connected devices"},
    {ChangeKind::elementsAreObjects, "elements-are-objects", "if element # of the list were an object, as all must be"},
    {ChangeKind::device, "device", "if it were a name with properties"},
    {ChangeKind::textMember, "text-member", "if $ were a text"},
    {ChangeKind::address, "address", "with an address (device_address)"},
    {ChangeKind::level, "level", "with a level (device_batteryLevelMain, say)"},
    {ChangeKind::laterElementsGone, "later-elements-gone", "if element #& were gone"},
    {ChangeKind::companion, "companion", "with a companion application among the helper's resources"},
    {ChangeKind::container, "container", "with a folder of the application group"},
    {ChangeKind::watchFile, "watch-file", "with a file that the companion wrote"},
    {ChangeKind::validJSON, "valid-json", "if the file were JSON"},
    {ChangeKind::objectMember, "object-member", "if $ were an object, and so were all"},
    {ChangeKind::noNull, "no-null", "with any value but null"},
    {ChangeKind::deviceGone, "device-gone", "if no Bluetooth device had the key $"},
}};

constexpr bool rowsFollowTheEnumeration()
{
    for (std::size_t row = 0; row < changeTexts.size(); ++row) {
        if (static_cast<std::size_t>(changeTexts[row].kind) != row)
            return false;
    }
    return true;
}

static_assert(rowsFollowTheEnumeration());

const ChangeText& textOf(ChangeKind kind)
{
    return changeTexts[static_cast<std::size_t>(kind)];
}

std::string degreesText(double degrees)
{
    std::array<char, 32> text;
    const auto tenths = static_cast<long>(degrees * 10); // thresholds have no more digits
    std::snprintf(text.data(), text.size(), "%ld.%ld", tenths / 10, tenths % 10);
    return text.data();
}

std::string describe(const ChangeStep& step)
{
    std::string result;
    for (const char character : textOf(step.kind).text) {
        if (character == '$')
            result += step.name.empty() ? "the whole" : step.name;
        else if (character == '#')
            result += std::to_string(step.number);
        else if (character == '%')
            result += degreesText(step.degrees);
        else if (character == '&')
            result += step.count > 1 ? " and " + std::to_string(step.count - 1) + " more behind it" : "";
        else
            result += character;
    }
    return result;
}

} // namespace

std::string_view identifierOf(ChangeKind kind)
{
    return textOf(kind).identifier;
}

std::string describe(const Change& change)
{
    std::string result;
    for (const auto& step : change) {
        if (!result.empty())
            result += ", ";
        result += describe(step);
    }
    return result;
}

} // namespace orv
