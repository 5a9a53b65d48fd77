#pragma once

#include "base/FileDescriptor.h"

#include <string>

namespace orv {

/// A regular file, opened for reading without ever waiting for another process. Otherwise none, and errno says why
/// (EISDIR, EINVAL when it is no regular file).
FileDescriptor openRegularFile(const std::string& path);

} // namespace orv
