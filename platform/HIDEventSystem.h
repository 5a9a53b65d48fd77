#pragma once

#include "readings/Value.h"

#include <cstdint>
#include <functional>
#include <optional>

namespace orv {

/// One service of the HID event system. Everything is asked only when called.
class HIDService {
public:
    virtual ~HIDService() = default;

    /// The "LocationID" property: a number, another value, or null when the service has none.
    virtual Value locationID() = 0;

    /// A field of the service's current event of a type; nothing when there is no such event.
    virtual std::optional<double> eventValue(std::int32_t eventType, std::int32_t field) = 0;
};

/// The HID event system, asked through a client that lives for one call.
class HIDEventSystem {
public:
    virtual ~HIDEventSystem() = default;

    /// Visits the services matched on "PrimaryUsagePage" and "PrimaryUsage", in their order. False when no client
    /// could be created; a client without services visits none and returns true.
    virtual bool forEachService(
        std::int32_t page, std::int32_t usage, const std::function<void(HIDService&)>& visit) = 0;
};

} // namespace orv
