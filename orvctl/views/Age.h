#pragma once

#include "service/Client.h"

#include <chrono>
#include <string>

namespace orv {

/// An age for people, never too small: "42 s", "13 min", "5 h", "3 days".
std::string ageText(std::chrono::microseconds age);

/// What is to be said of readings that are not fresh: "stale, measured 42 s ago", "asleep, measured 5 h ago"; nothing
/// of fresh ones.
std::string ageRemark(const Timing& timing);

/// The lines below a table of a reply that is not fresh.
std::string thermalAge(const ServiceTiming& timing);
std::string bluetoothAge(const ServiceTiming& timing);

} // namespace orv
