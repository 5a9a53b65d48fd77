#pragma once

#include "simulated/MemberChecks.h"
#include "simulated/Recording.h"

namespace orv {

/// Converts one line of a recording.
class StepReader : public MemberChecks {
public:
    /// `keys` and `services` are those of the machine.
    StepReader(const std::set<std::uint32_t>& keys, std::size_t services, double previous);

    RecordingStep read(const Value& line);

private:
    void readSMC(const Value& values, RecordingStep& step);
    void readHID(const Value& values, RecordingStep& step);
    std::size_t service(const std::string& number, const std::string& member);
    std::optional<RecordedEvent> event(const Value& value);

    const std::set<std::uint32_t>& keys;
    const std::size_t services;
    const double previous;
};

} // namespace orv
