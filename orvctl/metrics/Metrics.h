#pragma once

#include "readings/Value.h"
#include "service/Client.h"

#include <chrono>
#include <optional>
#include <string>

namespace orv {

enum class DeviceNaming { standIns, keys };

/// What metrics are made of: both replies and, where they have one, their time.
struct MeasuredMac {
    Dictionary thermal;
    Dictionary bluetooth;
    std::optional<ServiceTiming> timing;
    std::chrono::system_clock::time_point now; // by the wall clock
};

/// The text of all series. Those of readings that are no longer fresh are left out, their times are not.
std::string metricsOf(const MeasuredMac& mac, DeviceNaming naming);

/// The text of a machine of which nothing is known: orv_build_info alone.
std::string metricsWithoutReadings();

} // namespace orv
