#pragma once

#include "readings/Value.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace orv {

/// How far the walk came before the list of connected devices: to it, or to the first of these that it met.
enum class ReportOutcome : std::uint8_t {
    walked,
    notJSON,
    notAnObject,
    noDataType, // "SPBluetoothDataType" is missing, is no list or is empty
    noConnectedList, // its first element is no object, or has no list "device_connected"
};

/// What became of an element of that list: it is shown, or a rule stopped it.
enum class DeviceOutcome : std::uint8_t { shown, spoiltList, notADevice, notText, noAddress, noLevel };

struct DeviceDecision {
    std::size_t element = 0; ///< Its place in the list.
    DeviceOutcome outcome = DeviceOutcome::shown;
    std::string_view member{}; ///< The property that is no text.
    std::string_view key{}; ///< The device key of one that is shown.
};

/// Is told what the walk through a report decides. All references are valid during the call only.
class BluetoothReportObserver {
public:
    virtual ~BluetoothReportObserver() = default;

    /// `connected` is the list of connected devices; nullptr when the report has none. `spoiler` is its first element
    /// that is no object.
    virtual void reportWalked(ReportOutcome outcome, const Array* connected, std::optional<std::size_t> spoiler) = 0;
    virtual void deviceDecided(const DeviceDecision& decision) = 0;
};

} // namespace orv
