#pragma once

#include "base/LineReader.h"
#include "simulated/MachineFile.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orv {

enum class RecordedEvent { sleep, wake, connect, pair };

/// A later moment of a recording: what is different from then on, and then what happened.
struct RecordingStep {
    double at = 0; // seconds since the recording's beginning
    std::vector<std::pair<std::uint32_t, std::optional<std::string>>> smc; // key and bytes; without: it fails
    std::vector<std::pair<std::size_t, std::optional<double>>> hid; // service and degrees; without: no event
    std::optional<std::string> profilerOutput;
    std::optional<std::optional<std::string>> watchFile; // without content: no file
    std::optional<RecordedEvent> event;
};

/// A machine file and the steps that may follow it, read line by line as they are played: what it takes of memory does
/// not depend on its length. orv-machine-file(5) documents the format.
class Recording {
public:
    /// Opens a recording whose every line can be used. Otherwise nothing, and `fault` is one line that names the file,
    /// the line or member and what is wrong, and what describes such files.
    static std::optional<Recording> open(const std::string& path, std::string& fault);

    /// The same, but looks at nothing after the machine.
    static std::optional<Recording> begin(const std::string& path, std::string& fault);
    /// Whether all that follows the last step can be used, and whether all before could. Stays at that step.
    bool lookThrough();
    /// One line about the first step that cannot be used, once that was reached.
    const std::string& fault() const { return stepFault; }

    const MachineFile& machine() const { return firstMoment; }
    /// Seconds from its beginning to its last step, once that was reached.
    double length() const { return lastMoment; }
    /// One line that says where a file that was cut off ends; empty for a whole one.
    const std::string& notice() const { return cutNotice; }

    /// The next step; nothing at the end or at a fault.
    std::optional<RecordingStep> next();

    /// Goes back to the first step. False, and errno says why, when the file cannot be read again.
    bool rewind();

    /// What the profiler prints at a moment. Takes the steps up to it.
    std::string profilerOutputAt(double moment);

private:
    Recording(std::string path, MachineFile machine, LineReader lines);
    std::optional<RecordingStep> read(std::string_view line);
    void refuse(std::size_t line, const std::string& what);

    std::string path;
    MachineFile firstMoment;
    LineReader lines;
    std::set<std::uint32_t> keys;
    LineReader::Mark firstStep;
    double previous = 0;
    double lastMoment = 0;
    std::string cutNotice;
    std::string stepFault;
};

} // namespace orv
