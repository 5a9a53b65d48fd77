#pragma once

#include <functional>

namespace orv {

/// What must not be left undone when the process stops at a fault; may be empty. Set while there is only one thread;
/// called on the thread that met the fault, so more than once when several do.
extern std::function<void()> beforeFatalStop;

/// A broken precondition: one line on standard error, then abort.
[[noreturn]] void fatalError(const char* message);

} // namespace orv
