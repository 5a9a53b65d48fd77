#include "orvctl/collecting/EnterSimulation.h"

namespace orv {

// This program is linked with the simulated calls already.
std::optional<std::string> enterSimulation()
{
    return std::nullopt;
}

} // namespace orv
