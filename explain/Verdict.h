#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace orv {

/// Why something is, or is not, in a reply. Everything that is explained has exactly one.
enum class Verdict : std::uint8_t {
    shown,
    // SMC temperatures
    belowThreshold,
    noNumber,
    wrongSize,
    negative,
    empty,
    exchangeFailed,
    notInCatalogue,
    titleTaken,
    beyondCoreCount,
    leftOutOnChip,
    otherSource,
    notListed,
    // fans
    fanLimit,
    fanIndex,
    noFan,
    // HID services
    noLocation,
    noEvent,
    // Bluetooth devices
    notConnected,
    spoiltList,
    notADevice,
    notText,
    noAddress,
    noLevel,
    // the watch file
    noCompanion,
    noContainer,
    noFile,
    notJSON,
    notObjects,
    nullLeftOut,
};

struct VerdictText {
    Verdict verdict;
    std::string_view identifier; ///< In documents; never changed.
    std::string_view text; ///< For people.
};

/// One row a verdict, in the order of the enumeration.
extern const std::array<VerdictText, 30> verdictTexts;

std::string_view identifierOf(Verdict verdict);
std::string_view textOf(Verdict verdict);

} // namespace orv
