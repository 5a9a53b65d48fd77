#pragma once

#include "readings/Value.h"

#include <map>
#include <optional>
#include <string>

namespace orv {

/// The sensors and fans that a Mac is expected to show: key to title.
using Baseline = std::map<std::string, std::string>;

/// Those of a reply.
Baseline baselineOf(const Dictionary& thermal);

/// packaging/schemas/orv.baseline-1.json describes it.
std::string baselineText(const Baseline& baseline);

/// The baseline that a file holds. Nothing when it cannot be used; `fault` is then one line.
std::optional<Baseline> readBaseline(const std::string& path, std::string& fault);

} // namespace orv
