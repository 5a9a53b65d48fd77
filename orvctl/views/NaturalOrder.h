#pragma once

#include <string_view>

namespace orv {

/// Whether a text comes before another for people: digits that follow each other are one number, so that
/// "Core 2" comes before "Core 10". A total order: texts that differ in leading zeros alone follow their bytes.
bool comesNaturallyBefore(std::string_view left, std::string_view right);

} // namespace orv
