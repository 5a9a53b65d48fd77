#include "linux/loop/ProgramEnd.h"

#include "base/Fatal.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>

namespace orv {

void tellOfEnd(const char* what, const char* reason)
{
    static std::atomic_flag isTold;
    if (isTold.test_and_set())
        return;
    std::fprintf(stderr, reason ? "orv-smc-helper: %s: %s\n" : "orv-smc-helper: %s\n", what, reason);
}

void endAtOnce()
{
    if (beforeFatalStop)
        beforeFatalStop();
    std::_Exit(1);
}

} // namespace orv
