#pragma once

#include <string>
#include <string_view>

namespace orv {

/// A text for one line. Names come from devices and files: whatever would move the cursor becomes a question mark.
std::string printable(std::string_view text);

} // namespace orv
