#pragma once

#include "thermal/KeyedTable.h"

/// The sensors that are known. One that no table names is never read.
namespace orv::Orv_SMCProfileKeys {

/// SMC temperatures of Intel machines.
extern const SensorTable intelSensorKeys;

/// SMC temperatures outside the SoC, on every Apple-silicon machine.
extern const SensorTable commonSensorKeys;

/// SMC temperatures of the SoC, on Apple silicon later than M1.
extern const SensorTable socSensorKeys;

/// The keys of socSensorKeys that belong to efficiency cores.
extern const KeyList efficiencyCoreKeys;

/// The keys of socSensorKeys that belong to performance cores.
extern const KeyList performanceCoreKeys;

/// The HID temperature sensors of the M1 models.
extern const SensorTable hidSensorNames;

} // namespace orv::Orv_SMCProfileKeys
