#pragma once

#include <string>
#include <vector>

namespace orv {

/// What a whole question such as "where is my GPU" asks for: its words without those that only make a question of them.
std::vector<std::string> questionWords(const std::string& question);

} // namespace orv
