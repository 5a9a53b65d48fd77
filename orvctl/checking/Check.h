#pragma once

#include "orvctl/checking/Baseline.h"
#include "orvctl/checking/Limit.h"
#include "readings/Value.h"

#include <optional>
#include <string>
#include <vector>

namespace orv {

struct CheckPlan {
    std::vector<Limit> limits;
    std::optional<Baseline> expected;
};

/// The state of a Mac and the reasons for it.
struct CheckResult {
    PluginState state = PluginState::ok;
    std::string text; // the worst first
    std::string performance; // what monitoring plugins give after a bar
};

/// What the thermal reply tells. The only limits are those of the plan, and a fan's own lowest speed.
CheckResult check(const Dictionary& thermal, const CheckPlan& plan);

/// The one line, which a monitoring program reads.
std::string pluginLine(const CheckResult& result);

} // namespace orv
