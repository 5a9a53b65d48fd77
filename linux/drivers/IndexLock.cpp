#include "linux/drivers/IndexLock.h"

#include <cerrno>

namespace orv {

namespace {

// Two seconds: a walk over all keys takes one at most.
constexpr int mostAttempts = 400;

} // namespace

IndexLock::IndexLock(SMCAttributes& driverCalls, KeptAttribute& keyAtIndex)
    : calls(driverCalls)
    , index(keyAtIndex)
{
}

bool IndexLock::take()
{
    const int attempts = isWorthWaiting ? mostAttempts : 1;
    for (int attempt = 0; attempt < attempts; ++attempt) {
        if (attempt > 0)
            calls.pause();
        isWorthWaiting = true;
        // A lock that cannot be had for another reason is nobody's.
        if (index.lock() || errno != EWOULDBLOCK)
            return true;
    }
    isWorthWaiting = false;
    return false;
}

void IndexLock::giveBack()
{
    index.unlock();
}

} // namespace orv
