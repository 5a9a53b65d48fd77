#include "linux/loop/FreeMemory.h"

#include "base/File.h"

#include <malloc.h>
#include <unistd.h>

#include <charconv>
#include <cstddef>

namespace orv {

namespace {

constexpr std::size_t much = 16u << 20; // more than the program itself takes

// The second number of /proc/self/statm counts resident pages (proc(5)).
std::size_t residentBytes()
{
    const auto text = readFile("/proc/self/statm", 4096).value_or("");
    const auto second = text.find(' ') + 1;
    std::size_t pages = 0;
    std::from_chars(text.data() + second, text.data() + text.size(), pages);
    return pages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

} // namespace

void giveFreeMemoryBack()
{
    // What is free says little: it also counts pages that were given back before.
    const auto allocated = mallinfo2();
    if (residentBytes() > allocated.uordblks + allocated.hblkhd + much)
        malloc_trim(0);
}

} // namespace orv
