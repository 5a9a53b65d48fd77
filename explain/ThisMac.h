#pragma once

#include "explain/Explanation.h"

#include <optional>
#include <string>
#include <vector>

namespace orv {

struct InspectedMac {
    Inspection inspection;
    std::vector<Obstacle> obstacles;
};

struct InspectionAnswer {
    std::optional<InspectedMac> mac;
    std::string error; // one line, when there is none
};

/// Inspects the computer that the program runs on.
InspectionAnswer inspectThisMac(const std::vector<std::string>& wantedKeys);

/// Which model the computer is that the program runs on.
std::string modelOfThisMac();

} // namespace orv
