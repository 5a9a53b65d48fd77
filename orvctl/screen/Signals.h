#pragma once

#include "base/FileDescriptor.h"

#include <vector>

namespace orv {

/// While it lives, the signals that end, stop, continue and resize are only noted; one that ends is followed by an
/// alarm if the program has not ended by then. One at a time.
class Signals {
public:
    Signals();
    ~Signals();
    Signals(const Signals&) = delete;
    Signals& operator=(const Signals&) = delete;

    /// Readable when one has come.
    int descriptor() const { return arriving.get(); }
    /// Those that have come since the last time.
    std::vector<int> take();

    /// Stops the program as the terminal's stop key does without us, and returns when it is continued.
    static void stop();

private:
    FileDescriptor arriving;
    FileDescriptor noting;
};

} // namespace orv
