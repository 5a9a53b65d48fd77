#pragma once

#include <string>

namespace orv {

/// The folder that holds the running program's own folder: where its bin/, lib/ and libexec/ lie.
std::string installationPrefix();

/// A program that only this one runs, by name.
std::string helperProgram(const std::string& name);

} // namespace orv
