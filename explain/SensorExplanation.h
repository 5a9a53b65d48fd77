#pragma once

#include "explain/Explanation.h"

#include <vector>

namespace orv {

class WhatIf;

/// Every listed key, HID service and row of the applying catalogue, each once.
std::vector<SensorRow> explainSensors(const Inspection& inspection, Changes changes);

/// What would show a sensor; nothing for one that is shown, and where no change helps.
std::optional<Change> changeFor(const SensorRow& row, const WhatIf& whatIf, const Inspection& inspection);

} // namespace orv
