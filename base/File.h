#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace orv {

/// The whole content of a regular file, at most `limit` bytes long. Otherwise nothing, and errno says why (EFBIG when
/// it is longer, EINVAL when it is no regular file). Never waits for another process.
std::optional<std::string> readFile(const std::string& path, std::size_t limit);

/// The first line of a text of the kernel's, which ends with a newline, with a NUL (in a device tree) or not at all.
std::string_view firstLine(std::string_view text);

/// The first line of a file that `readFile` takes; empty when it does not.
std::string firstLineOfFile(const std::string& path, std::size_t limit);

} // namespace orv
