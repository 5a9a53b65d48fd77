#pragma once

namespace orv {

/// Prints the one line with which the program ends: "what", or "what: reason". The first counts, on whatever thread.
void tellOfEnd(const char* what, const char* reason = nullptr);

/// Ends the program with status 1 and takes nothing down, because what met a shortage cannot be relied on for that.
[[noreturn]] void endAtOnce();

} // namespace orv
