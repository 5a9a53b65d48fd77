#include "platform/linux/FreeMemory.h"

#include <malloc.h>

#include <algorithm>

namespace orv {

namespace {

constexpr std::size_t noticeable = 4u << 20;

} // namespace

void FreeMemory::giveBack()
{
    const auto free = mallinfo2().fordblks;
    kept = std::min(kept, free);
    if (free < kept + noticeable)
        return;
    malloc_trim(0);
    kept = mallinfo2().fordblks; // pages that were given back still count as free
}

} // namespace orv
