#pragma once

#include <cstdio>
#include <cstdlib>

namespace orv {

/// A broken precondition: one line on standard error, then abort.
[[noreturn]] inline void fatalError(const char* message)
{
    std::fprintf(stderr, "orv: fatal error: %s\n", message);
    std::abort();
}

} // namespace orv
