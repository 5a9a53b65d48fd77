#pragma once

#include "base/FileDescriptor.h"

namespace orv {

/// While it lives, what is written to standard error is kept aside, so that it does not spoil a screen. Then it is
/// written after all.
class HeldComplaints {
public:
    HeldComplaints();
    ~HeldComplaints();
    HeldComplaints(const HeldComplaints&) = delete;
    HeldComplaints& operator=(const HeldComplaints&) = delete;

    /// Writes what was kept, and keeps nothing any more. Callable from a signal handler.
    void release();

private:
    FileDescriptor kept;
    FileDescriptor original;
};

} // namespace orv
