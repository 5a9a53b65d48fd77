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

/// Ends the program after `clean`, whatever it is waiting for: with status 0 when SIGTERM, SIGINT or SIGHUP arrives,
/// and as SIGQUIT does when that arrives; what is ignored of SIGHUP and SIGQUIT stays ignored. A reader that goes away
/// raises no signal from here on. To be called before any other thread is started.
void endOnSignals(void (*clean)());

} // namespace orv
