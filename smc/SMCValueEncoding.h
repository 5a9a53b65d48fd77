#pragma once

#include "smc/SMCValueDecoding.h"

#include <optional>
#include <string>

namespace orv {

/// The inverse of decodeValue: the bytes of the nearest value that the format holds, at the size that it requires or
/// needs. Nothing for a format without numbers.
std::optional<std::string> encodeValue(const SMCValueFormat& format, double number);

} // namespace orv
