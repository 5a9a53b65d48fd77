#pragma once

#include "orvctl/checking/PluginState.h"

#include <optional>
#include <string>

namespace orv {

/// A limit that somebody set: a reading above it has this state.
struct Limit {
    std::string what; // a key, a title, or the identifier of a group of sensors
    double above = 0;
    PluginState state = PluginState::warning;
};

/// From "WHAT=N"; nothing when there is no WHAT, or when N is no finite decimal number.
std::optional<Limit> parseLimit(const std::string& text, PluginState state);

} // namespace orv
