#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace orv {

/// The cells of a row of RFC 4180 that lies within one line.
std::vector<std::string> csvFields(std::string_view row);

} // namespace orv
