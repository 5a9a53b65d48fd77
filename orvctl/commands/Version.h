#pragma once

#include <CLI/CLI.hpp>

namespace orv {

/// Adds --version, which --json makes a document of the schema orv.version/1.
void addVersion(CLI::App& application);

} // namespace orv
