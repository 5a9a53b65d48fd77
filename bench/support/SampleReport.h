#pragma once

#include <cstddef>
#include <string>

namespace orv {

/// What the system profiler prints of as many connected devices as take about so many bytes.
std::string sampleReport(std::size_t bytes);

} // namespace orv
