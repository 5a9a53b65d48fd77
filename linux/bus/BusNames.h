#pragma once

#include <string>

namespace orv {

// The names of the service on D-Bus. The bus name is the bundle identifier itself.

inline constexpr const char* requestInterface = "org.orv.OrvXPCRequestData";
inline constexpr const char* sensorsInterface = "org.orv.Sensors1";
inline constexpr const char* simulationInterface = "org.orv.SimulatedMac";

/// The object path of a bundle identifier: "/org/orv/SMCHelper" for "org.orv.SMCHelper", "/" for none. A character
/// that no path may hold becomes an underscore.
std::string objectPath(const std::string& bundleIdentifier);

} // namespace orv
