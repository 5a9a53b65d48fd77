#include "bench/support/Allocations.h"

#include <malloc.h>

#include <algorithm>
#include <cstdlib>
#include <new>

namespace orv {

namespace {

// One thread measures, so these need no lock.
std::size_t count = 0;
std::size_t inUse = 0;
std::size_t bytes = 0;
std::size_t peak = 0;

} // namespace

std::size_t allocationCount()
{
    return count;
}

std::size_t allocationsInUse()
{
    return inUse;
}

std::size_t allocatedBytes()
{
    return bytes;
}

std::size_t peakOfAllocatedBytes()
{
    return peak;
}

void resetPeakOfAllocatedBytes()
{
    peak = bytes;
}

} // namespace orv

void* operator new(std::size_t size)
{
    void* memory = std::malloc(size);
    if (!memory)
        throw std::bad_alloc();
    ++orv::count;
    ++orv::inUse;
    orv::bytes += malloc_usable_size(memory);
    orv::peak = std::max(orv::peak, orv::bytes);
    return memory;
}

void operator delete(void* memory) noexcept
{
    if (!memory)
        return;
    --orv::inUse;
    orv::bytes -= malloc_usable_size(memory);
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    operator delete(memory);
}
