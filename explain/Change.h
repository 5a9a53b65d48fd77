#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orv {

/// One thing that would have to be otherwise.
enum class ChangeKind : std::uint8_t {
    // an SMC key
    listed,
    readable,
    ofType, // `name` is the type
    ofSize, // `number` is the size
    above, // reads more than `degrees`
    keyGone, // `name` is another key
    efficiencyCores, // `number` of them
    performanceCores,
    otherChip, // `name` is the chip that it must not be
    codeGone, // no HID service has the code `name`
    // a HID service
    serviceWithCode, // one that has the code `name`
    location, // `number`, which spells the code `name`
    eventAbove, // its event reads more than `degrees`
    laterServicesGone, // those behind it that have its code; `number` is the next one
    // an element of the Bluetooth report
    connected,
    elementsAreObjects, // all of the list; `number` is the first that is none
    device, // the element is a name with properties
    textMember, // the property `name` is a text
    address,
    level,
    laterElementsGone, // those behind it that have its address; `number` is the next one
    // an entry of the watch file
    companion,
    container,
    watchFile,
    validJSON,
    objectMember, // the member `name` is an object; without a name the whole is one
    noNull,
    deviceGone, // no Bluetooth device has the key `name`
};

struct ChangeStep {
    ChangeKind kind;
    std::string name{};
    std::int64_t number = 0;
    double degrees = 0;
    std::int64_t count = 1; // of services or elements that must be gone

    bool operator==(const ChangeStep&) const = default;
};

/// The smallest change that would show something: all of its steps, each of which is needed.
using Change = std::vector<ChangeStep>;

/// For documents; never changed.
std::string_view identifierOf(ChangeKind kind);

/// The change in words, for example "if TC0P were gone, above 10.0 °C".
std::string describe(const Change& change);

} // namespace orv
