#include "thermal/Orv_SMCProfileKeys.h"

#include "thermal/tables/CommonSensorKeys.h"
#include "thermal/tables/CoreKeys.h"
#include "thermal/tables/HIDSensorNames.h"
#include "thermal/tables/IntelSensorKeys.h"
#include "thermal/tables/SocSensorKeys.h"

namespace orv::Orv_SMCProfileKeys {

namespace {

template <const auto& rows> constexpr auto sorted = sortedByKey(rows);
template <const auto& rows> constexpr auto ordinals = ordinalsOf(sorted<rows>);

} // namespace

constexpr SensorTable intelSensorKeys{intelRows, sorted<intelRows>, ordinals<intelRows>};
constexpr SensorTable commonSensorKeys{commonRows, sorted<commonRows>, ordinals<commonRows>};
constexpr SensorTable socSensorKeys{socRows, sorted<socRows>, ordinals<socRows>};
constexpr KeyList efficiencyCoreKeys{efficiencyCores, sorted<efficiencyCores>, ordinals<efficiencyCores>};
constexpr KeyList performanceCoreKeys{performanceCores, sorted<performanceCores>, ordinals<performanceCores>};
constexpr SensorTable hidSensorNames{hidRows, sorted<hidRows>, ordinals<hidRows>};

// A core sensor is counted only when it is read, and it is read only when the SoC table names it.
static_assert(isSubset(efficiencyCoreKeys, socSensorKeys));
static_assert(isSubset(performanceCoreKeys, socSensorKeys));

// So that a key has one kind, and one table decides about it.
static_assert(sharesNoKey(efficiencyCoreKeys, performanceCoreKeys));
static_assert(sharesNoKey(commonSensorKeys, socSensorKeys));

static_assert(!hidSensorNames.contains("Tsdi"));

} // namespace orv::Orv_SMCProfileKeys
