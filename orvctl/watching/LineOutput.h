#pragma once

#include <string>

namespace orv {

/// Writes to standard output, each text in one piece, unbuffered. A reader that goes away is no fault.
class LineOutput {
public:
    /// False when nothing more can be written.
    bool write(const std::string& text);

    /// What could not be written and why, or an empty text.
    std::string fault;
};

/// Ends the program with status 0, after `clean`, when SIGTERM, SIGINT or SIGHUP arrives, whatever it is waiting for;
/// a reader that goes away raises no signal from here on. To be called before any other thread is started.
void endOnSignals(void (*clean)());

} // namespace orv
