#pragma once

#include "explain/Explanation.h"
#include "simulated/MachineFile.h"

#include <string>

namespace orv {

/// What a change of a machine must bring about.
struct Expectation {
    MachineFile machine;
    std::string key; // appears in the reply
    std::string entry; // of a null: the entry of the reply, as JSON; otherwise empty
};

/// The machine after the change that a row names.
Expectation changed(const MachineFile& machine, const SensorRow& row);
Expectation changed(const MachineFile& machine, const DeviceRow& row);
Expectation changed(const MachineFile& machine, const WatchRow& row);

/// The machine with a value under a row's key, or in its service, that would do anywhere.
MachineFile withGoodValue(const MachineFile& machine, const SensorRow& row);

} // namespace orv
