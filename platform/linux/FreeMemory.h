#pragma once

#include <cstddef>

namespace orv {

/// Memory that the allocator holds without need. glibc keeps what lies between blocks that are still in use, which
/// after one large watch file may be nearly all of it.
class FreeMemory {
public:
    /// Gives it back to the system when it has grown by several megabytes since the last time. Cheap otherwise.
    void giveBack();

private:
    std::size_t kept = 0; // free bytes after the last time
};

} // namespace orv
