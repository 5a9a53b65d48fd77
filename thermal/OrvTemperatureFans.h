#pragma once

#include <cstdint>
#include <string>

namespace orv {

/// The machine profile, which decides how temperatures are collected. Read from the kernel once, then constant.
class OrvTemperatureFans {
public:
    OrvTemperatureFans();

    /// The profile of this machine, built at the first use.
    static const OrvTemperatureFans& shared();

    std::int64_t numberOfEfficiencyCores; // logical CPUs of performance level 1; 4 when unknown
    std::int64_t numberOfPerformanceCores; // logical CPUs of performance level 0; 4 when unknown
    std::string platform; // the machine model, for example "MacBookPro17,1"
    bool isAppleChip;

    /// Whether this is one of the five first M1 models, whose die sensors are HID services. M1 Pro, Max and Ultra are
    /// not.
    bool isM1() const;
};

} // namespace orv
