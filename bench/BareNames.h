#pragma once

namespace orv {

/// What the bare service is called by: a bus name and the interface of its one object.
inline constexpr const char* bareName = "org.orv.Bare";
inline constexpr const char* barePath = "/";
inline constexpr const char* bareMethod = "Entries";

} // namespace orv
