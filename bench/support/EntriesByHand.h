#pragma once

#include "base/FileDescriptor.h"
#include "bench/support/DriverFiles.h"
#include "readings/Readings.h"

#include <string>
#include <utility>
#include <vector>

namespace orv {

/// What a refresh through the driver's files comes down to, without an SMC in between: each file is read by one pread,
/// its decimal number parsed, and the entries are appended to a list in the order of their keys.
class EntriesByHand {
public:
    explicit EntriesByHand(const DriverFiles& files);

    using Entries = std::vector<std::pair<std::string, ThermalDictionary::Reading>>;
    Entries collect() const;

private:
    struct Sensor {
        std::string key;
        std::string title;
        std::vector<FileDescriptor> files;
    };
    std::vector<Sensor> sensors;
};

} // namespace orv
