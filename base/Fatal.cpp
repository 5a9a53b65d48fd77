#include "base/Fatal.h"

#include <cstdio>
#include <cstdlib>

namespace orv {

std::function<void()> beforeFatalStop;

void fatalError(const char* message)
{
    std::fprintf(stderr, "orv: fatal error: %s\n", message);
    if (beforeFatalStop)
        beforeFatalStop();
    std::abort();
}

} // namespace orv
