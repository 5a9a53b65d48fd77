#pragma once

namespace orv {

/// Where in the application group's container the companion writes.
inline constexpr const char* watchFileInContainer = "/Library/Application Support/applewatchbt.json";

} // namespace orv
