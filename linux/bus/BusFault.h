#pragma once

#include <string>

namespace orv {

/// What to say when the session bus cannot be reached, by sd-bus's negative error number.
std::string noSessionBus(int error);

} // namespace orv
