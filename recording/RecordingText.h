#pragma once

#include "recording/RecordedMoment.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace orv {

/// What a recording says of the machine itself.
struct MachineIdentity {
    std::string model;
    std::string processor;
    std::optional<std::int64_t> efficiencyCores; // nothing: the kernel does not say
    std::optional<std::int64_t> performanceCores;
};

/// The identity of this machine, of which nothing but what collections use is taken.
MachineIdentity machineIdentity();

/// The first object of a recording: a machine file, a row a line. Without an SMC the moment's keys are left out.
std::string firstObject(
    const MachineIdentity& identity, const RecordedMoment& moment, bool hasSMC, const Value& profilerOutput);

/// The members of a step that tell `after` from `before`, two moments of one machine.
std::vector<Member> changes(const RecordedMoment& before, const RecordedMoment& after);

/// Seconds since a recording's beginning as they are written: a whole number of them as an integer.
Value momentOf(double seconds);

/// One line of a recording, its newline included.
std::string stepLine(double at, std::vector<Member> members);

} // namespace orv
