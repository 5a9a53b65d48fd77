#pragma once

#include <cstddef>

namespace orv {

/// What operator new gave out so far, in the whole program.
std::size_t allocationCount();
/// How many of those are still in use.
std::size_t allocationsInUse();

/// The bytes that are given out at this moment, and the most that were since the last reset.
std::size_t allocatedBytes();
std::size_t peakOfAllocatedBytes();
void resetPeakOfAllocatedBytes();

} // namespace orv
