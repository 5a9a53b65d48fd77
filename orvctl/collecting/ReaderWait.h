#pragma once

#include <chrono>

namespace orv {

/// Waits until a time has come. False, and at once, when nobody reads the descriptor any more.
bool waitWhileRead(int output, std::chrono::steady_clock::time_point until);

} // namespace orv
