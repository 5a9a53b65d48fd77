#pragma once

#include "readings/Value.h"
#include "service/Client.h"

#include <cstdint>
#include <optional>

namespace orv {

/// LastRefresh of the properties of org.orv.Sensors1; 0 when it is missing.
std::uint64_t lastRefresh(const Dictionary& properties);

/// How old the readings are by now that were asked for after the properties; nothing when these do not say.
std::optional<ServiceTiming> serviceTiming(const Dictionary& properties);

} // namespace orv
