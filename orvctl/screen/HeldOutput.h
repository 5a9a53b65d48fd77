#pragma once

#include "base/FileDescriptor.h"

#include <cstdio>

namespace orv {

/// Where the screen's library writes: the terminal, to which what it draws between hold and send goes at once. By
/// itself it writes for every place that it moves to, which in a picture may be fifty.
class HeldOutput {
public:
    HeldOutput();
    HeldOutput(const HeldOutput&) = delete;
    HeldOutput& operator=(const HeldOutput&) = delete;
    ~HeldOutput();

    std::FILE* stream() { return written; }

    void hold();
    void send();

private:
    FileDescriptor terminal;
    FileDescriptor held; // a file in memory; none where the system has no such files: then nothing is held back
    std::FILE* written; // on a descriptor of its own, which is the terminal's or that of what is held
};

} // namespace orv
