#include "thermal/ZpM1IOHIDSensors.h"

#include "base/Fatal.h"
#include "readings/Integers.h"
#include "smc/FourCharCode.h"
#include "thermal/Orv_SMCProfileKeys.h"
#include "thermal/Threshold.h"

#include <cmath>
#include <optional>

namespace orv::ZpM1IOHIDSensors {

namespace {

std::int32_t int32(std::int64_t number)
{
    if (number < INT32_MIN || number > INT32_MAX)
        fatalError("a HID number does not fit in 32 bits");
    return static_cast<std::int32_t>(number);
}

// The property is a number only when it converts to a signed integer without loss.
std::optional<std::int64_t> integerProperty(const Value& property)
{
    if (const auto* integer = property.as<std::int64_t>())
        return *integer;
    const auto* number = property.as<double>();
    if (!number || std::trunc(*number) != *number)
        return std::nullopt;
    return integerPart(*number);
}

} // namespace

ThermalDictionary readHIDTemperatures(HIDEventSystem& hidEventSystem, CollectionObserver* observer)
{
    const auto& table = Orv_SMCProfileKeys::hidSensorNames;
    if (observer)
        observer->hidTableUsed(table);
    ThermalDictionary temperatures;
    for (const auto& [code, degrees] :
        hidReadings(hidEventSystem, appleVendorPage, temperatureUsage, temperatureEventType, observer)) {
        const auto* sensor = table.find(code);
        const auto outcome = !sensor              ? ServiceOutcome::notInCatalogue
            : !countsAbove(hidThreshold, degrees) ? ServiceOutcome::belowThreshold
                                                  : ServiceOutcome::shown;
        if (outcome == ServiceOutcome::shown)
            temperatures.insert_or_assign(std::string(code), TemperatureEntry{std::string(sensor->name), degrees});
        if (observer)
            observer->serviceDecided(code, outcome);
    }
    return temperatures;
}

std::map<std::string, double> hidReadings(HIDEventSystem& hidEventSystem, std::int64_t page, std::int64_t usage,
    std::int64_t eventType, CollectionObserver* observer)
{
    std::map<std::string, double> readings;
    const auto type = int32(eventType);
    const auto field = int32(eventType * 65536); // the first field of a type, which is a temperature's level
    const auto addReading = [&](HIDService& service) {
        const auto location = integerProperty(service.locationID());
        if (!location || *location <= 0) {
            if (observer)
                observer->serviceRead(std::nullopt, std::nullopt);
            return;
        }
        const auto code = fourCharString(static_cast<std::uint32_t>(*location));
        const auto degrees = service.eventValue(type, field);
        const auto [reading, isFirst] = readings.insert_or_assign(code, degrees.value_or(-1.0));
        if (!observer)
            return;
        if (!isFirst)
            observer->serviceReplaced(code);
        observer->serviceRead(code, degrees);
    };
    if (!hidEventSystem.forEachService(int32(page), int32(usage), addReading))
        fatalError("no client of the HID event system");
    return readings;
}

} // namespace orv::ZpM1IOHIDSensors
