#pragma once

#include "explain/Explanation.h"

#include <vector>

namespace orv {

/// Every entry of the watch file, and every null that a reply leaves out; or the one thing that keeps all away.
std::vector<WatchRow> explainWatch(const Inspection& inspection);

} // namespace orv
