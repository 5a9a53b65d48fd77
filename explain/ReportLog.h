#pragma once

#include "bluetooth/BluetoothReportObserver.h"

#include <optional>
#include <string>
#include <vector>

namespace orv {

/// Keeps what the walk through a Bluetooth report decided.
class ReportLog final : public BluetoothReportObserver {
public:
    struct Device {
        DeviceOutcome outcome = DeviceOutcome::shown;
        std::string member;
        std::string key;
    };

    ReportOutcome outcome = ReportOutcome::notJSON;
    const Array* connected = nullptr; // of the report that was walked, and as long as that lives
    std::optional<std::size_t> spoiler;
    std::vector<Device> devices; // the list's elements, in their order

    void reportWalked(
        ReportOutcome walkOutcome, const Array* connectedList, std::optional<std::size_t> firstSpoiler) override
    {
        outcome = walkOutcome;
        connected = connectedList;
        spoiler = firstSpoiler;
    }
    void deviceDecided(const DeviceDecision& decision) override
    {
        devices.push_back({decision.outcome, std::string(decision.member), std::string(decision.key)});
    }
};

} // namespace orv
