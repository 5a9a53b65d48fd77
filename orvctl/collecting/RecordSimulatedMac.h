#pragma once

#include "recording/Session.h"

#include <functional>
#include <optional>
#include <string>

namespace orv {

/// Records the Mac of a machine file or recording on the manual clock: what was kept, in one line. Nothing when the
/// file cannot be used; `fault` then is one line.
std::optional<std::string> recordSimulatedMac(const std::string& path,
    const std::function<void(const std::string& text)>& write, const RecordingPlan& plan, std::string& fault);

} // namespace orv
