#pragma once

#include "platform/HIDEventSystem.h"
#include "smc/FanObserver.h"
#include "smc/SMCVal.h"
#include "smc/SMCValueDecoding.h"
#include "thermal/KeyedTable.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace orv {

/// What became of an SMC key that a table names: it is shown, or a rule stopped it. One key meets one of them.
enum class SensorOutcome : std::uint8_t {
    shown,
    leftOutOnChip,
    beyondCoreCount,
    exchangeFailed,
    noNumber, // for the decoder's reason
    belowThreshold,
    titleTaken,
};

/// The sensors of an SoC that are titled by counting.
enum class SocKind : std::uint8_t { other, efficiencyCore, performanceCore, gpu };

struct SensorDecision {
    std::string_view key;
    SensorOutcome outcome = SensorOutcome::shown;
    const SMCVal* val = nullptr; ///< What was read under the key, which is not in it; nullptr when it was not read.
    SMCValueFault fault = SMCValueFault::none; ///< Why it is no number.
    double degrees = 0; ///< What is reported, when it is shown.
    std::string_view from{}; ///< The key whose reading stands in for this one's; empty for its own.
    std::string_view title{}; ///< Empty for a sensor that was given none.
    std::string_view holder{}; ///< The key that has the title.
    SocKind kind = SocKind::other;
    std::int64_t number = 0; ///< Its place among its kind, from 1.
};

enum class ServiceOutcome : std::uint8_t { shown, notInCatalogue, belowThreshold };

/// Is told what a collection decides, while it does. All views are valid during the call only.
class CollectionObserver : public FanObserver {
public:
    /// The tables that this machine's collection looks keys up in.
    virtual void smcTableUsed(const SensorTable& table) = 0;
    virtual void hidTableUsed(const SensorTable& table) = 0;

    /// An SMC key that both the SMC and a table name.
    virtual void sensorDecided(const SensorDecision& decision) = 0;

    /// A HID service, in order: its code when it has a usable location, and its reading when it has an event.
    virtual void serviceRead(std::optional<std::string_view> code, std::optional<double> degrees) = 0;
    /// The service read next has this code too, and takes the place of the one that had it.
    virtual void serviceReplaced(std::string_view code) = 0;
    /// What became of the last service of a code.
    virtual void serviceDecided(std::string_view code, ServiceOutcome outcome) = 0;

    /// Another source's reading takes the place of the SMC's of this code.
    virtual void sensorReplaced(std::string_view code) = 0;
};

} // namespace orv
