#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace orv {

/// The whole content of a regular file, at most `limit` bytes long. Otherwise nothing, and errno says why (EFBIG when
/// it is longer, EINVAL when it is no regular file). Never waits for another process.
std::optional<std::string> readFile(const std::string& path, std::size_t limit);

} // namespace orv
