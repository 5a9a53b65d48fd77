#pragma once

#include "linux/drivers/SMCAttributes.h"

namespace orv {

/// The advisory lock on key_at_index: programs that take it use the index one after the other. Whoever may read the
/// attribute may also hold its lock, so it is waited for, but not for ever.
class IndexLock {
public:
    IndexLock(SMCAttributes& calls, KeptAttribute& index);

    /// False when somebody else has it and keeps it for seconds; after that it is tried, but not waited for, until it
    /// is free again.
    bool take();
    void giveBack();

private:
    SMCAttributes& calls;
    KeptAttribute& index;
    bool isWorthWaiting = true;
};

} // namespace orv
