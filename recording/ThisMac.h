#pragma once

#include "recording/Session.h"

#include <functional>
#include <string>

namespace orv {

/// Records the machine that this program runs on, and returns when the plan is fulfilled: what was kept, in one line.
/// Every system has its own.
std::string recordThisMac(const std::function<void(const std::string& text)>& write, const RecordingPlan& plan);

} // namespace orv
