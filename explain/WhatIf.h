#pragma once

#include "explain/Change.h"
#include "explain/Inspection.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orv {

/// What of a machine decides about temperatures.
struct ThermalMachine {
    OrvTemperatureFans profile;
    std::string processorName;
    std::vector<std::string> keys; // that the SMC lists
    SMCReads reads; // what reading a key gives; the last one for good
    std::vector<HIDRead> services;
};

/// Finds what would show a temperature: changes what stands in its way, one thing at a time, and asks the collection
/// itself what it would make of such a machine.
class WhatIf {
public:
    /// The inspection must outlive it.
    explicit WhatIf(const Inspection& inspection);

    /// What would show an SMC key; nothing when no change does.
    std::optional<Change> changeForKey(const std::string& key) const;
    /// What would show a HID service, by its place; nothing when no change does.
    std::optional<Change> changeForService(std::size_t place) const;
    /// What would show a row of the HID catalogue whose code no service has.
    std::optional<Change> changeForCode(const std::string& code) const;

private:
    bool showService(HIDRead service, Change& change) const;
    Change laterServicesGone(std::size_t place) const;
    std::string unusedCode() const;

    const Inspection& inspection;
    ThermalMachine machine; // without the keys that no table names, and without services
    std::vector<std::int64_t> laterServices; // how many services behind each one have its code
};

} // namespace orv
