#pragma once

namespace orv {

/// While it lives, SIGINT, SIGTERM, SIGQUIT and the closing of the terminal no longer end the program but are noted,
/// and a reader that goes away is a failed write. SIGQUIT ends the program when this goes. One at a time.
class Interruption {
public:
    Interruption();
    ~Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;

    bool hasCome() const;
};

} // namespace orv
