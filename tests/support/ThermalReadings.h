#pragma once

#include "readings/Readings.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string_view>

namespace orv {

/// The temperature of a code; a fault of the test when there is none.
inline double degreesOf(const ThermalDictionary& readings, std::string_view code)
{
    const auto found = std::ranges::find(readings, code, &ThermalDictionary::Entry::first);
    const auto* entry = found == readings.end() ? nullptr : std::get_if<TemperatureEntry>(&found->second);
    EXPECT_TRUE(entry) << code;
    return entry ? entry->value : 0;
}

} // namespace orv
