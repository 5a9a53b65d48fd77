#pragma once

#include "thermal/CollectionObserver.h"

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace orv {

/// Keeps what a collection decided.
class CollectionLog final : public CollectionObserver {
public:
    struct Sensor {
        SensorOutcome outcome = SensorOutcome::shown;
        std::optional<SMCVal> val; // what was decided on; nothing for a key that was not read
        SMCValueFault fault = SMCValueFault::none;
        double degrees = 0;
        std::string from;
        std::string title;
        std::string holder;
        SocKind kind = SocKind::other;
        std::int64_t number = 0;
        bool isReplaced = false; // by another source's reading
    };
    struct Fan {
        std::int64_t index = 0;
        FanEntry entry;
        std::optional<ReadSpeeds> readSpeeds; // nothing for a fan that was left out
    };
    struct Service {
        std::optional<std::string> code; // nothing without a usable location
        std::optional<double> degrees; // nothing without an event
        std::optional<std::size_t> replacedBy; // the place of the next one of the same code
        ServiceOutcome outcome = ServiceOutcome::notInCatalogue; // of one that was not replaced
    };

    std::vector<const SensorTable*> smcTables;
    const SensorTable* hidTable = nullptr; // nothing when HID is not asked
    std::map<std::string, Sensor, std::less<>> sensors;
    std::vector<Fan> fans;
    std::vector<Service> services; // in their order
    std::map<std::string, std::size_t, std::less<>> holders; // code to the last service that has it

    void fanRead(std::int64_t index, const FanEntry& fan, std::optional<ReadSpeeds> readSpeeds) override;
    void smcTableUsed(const SensorTable& table) override;
    void hidTableUsed(const SensorTable& table) override;
    void sensorDecided(const SensorDecision& decision) override;
    void serviceRead(std::optional<std::string_view> code, std::optional<double> degrees) override;
    void serviceReplaced(std::string_view code) override;
    void serviceDecided(std::string_view code, ServiceOutcome outcome) override;
    void sensorReplaced(std::string_view code) override;
};

} // namespace orv
