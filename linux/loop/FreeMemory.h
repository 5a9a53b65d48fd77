#pragma once

namespace orv {

/// Gives memory back to the system that the allocator holds without need, when it is much. glibc keeps the pages
/// between blocks that are still in use, which after one large watch file may be nearly all of them.
void giveFreeMemoryBack();

} // namespace orv
