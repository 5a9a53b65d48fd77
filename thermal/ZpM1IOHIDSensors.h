#pragma once

#include "platform/HIDEventSystem.h"
#include "readings/Readings.h"
#include "thermal/CollectionObserver.h"

#include <cstdint>
#include <map>
#include <string>

namespace orv::ZpM1IOHIDSensors {

inline constexpr std::int64_t appleVendorPage = 0xff00; // kHIDPage_AppleVendor
inline constexpr std::int64_t temperatureUsage = 5; // kHIDUsage_AppleVendor_TemperatureSensor
inline constexpr std::int64_t temperatureEventType = 15; // kIOHIDEventTypeTemperature

/// The temperatures of the HID services that the catalogue names and that read more than 5 degrees.
ThermalDictionary readHIDTemperatures(HIDEventSystem& hidEventSystem, CollectionObserver* observer = nullptr);

/// Every service with a positive location, under the four characters of its location: degrees Celsius, or -1.0 when
/// the service has no event. Of two services with one location the later one counts.
std::map<std::string, double> hidReadings(HIDEventSystem& hidEventSystem, std::int64_t page, std::int64_t usage,
    std::int64_t eventType, CollectionObserver* observer = nullptr);

} // namespace orv::ZpM1IOHIDSensors
