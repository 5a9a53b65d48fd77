#pragma once

#include <cstdint>

namespace orv {

/// What a monitoring plugin tells; the number is its exit status.
enum class PluginState : std::uint8_t { ok = 0, warning = 1, critical = 2, unknown = 3 };

} // namespace orv
