#pragma once

#include "readings/Value.h"
#include "recording/FirstReads.h"
#include "recording/StandIns.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace orv {

/// A key as it is written: a number's own bytes, zeros for everything else.
struct RecordedKey {
    std::string type; // four characters; empty when the SMC did not say
    std::uint32_t size = 0; // as the SMC reports it
    std::string bytes{}; // at most 32
    bool fails = false;
    bool isKept = false; // its bytes are a number

    bool operator==(const RecordedKey&) const = default;
};

/// A HID service as it is written.
struct RecordedService {
    std::optional<std::int64_t> locationID;
    std::optional<double> degrees;

    bool operator==(const RecordedService&) const = default;
};

/// What of a Mac's sensors a recording keeps at one moment: what collections can use, and nothing else.
struct RecordedMoment {
    std::vector<std::pair<std::string, RecordedKey>> smc; // in the SMC's order
    std::vector<RecordedService> hid;
    std::optional<Value> watch; // under stand-ins; nothing: there is no companion or no file
};

/// Keys that no machine file can name, and a key's second place, are left out.
std::vector<std::pair<std::string, RecordedKey>> recordedKeys(
    const std::vector<std::string>& names, const FirstReads& smc);
std::vector<RecordedService> recordedServices(const std::vector<ReadService>& services);

} // namespace orv
