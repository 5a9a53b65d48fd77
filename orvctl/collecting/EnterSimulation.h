#pragma once

#include <optional>
#include <string>

namespace orv {

/// To be called before a Mac is simulated, and before anything is opened: a program that is linked with the calls of
/// the Mac it runs on is replaced here by the one that is linked with the simulated ones. What it returns is why that
/// was not possible, in one line.
std::optional<std::string> enterSimulation();

} // namespace orv
