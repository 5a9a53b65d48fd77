#pragma once

#include <cassert>

namespace orv {

/// Whether the caller is on the thread that the process began with, on which its main loop runs.
bool isMainThread();

/// Where a header says "main thread only": stops the program in builds with assertions, and costs nothing in others.
inline void assertMainThread()
{
    assert(isMainThread());
}

} // namespace orv
