#pragma once

#include "orvctl/arguments/Program.h"

#include <array>
#include <functional>
#include <string>

namespace orv {

/// What a command does once its arguments were read; its result is the exit status.
using Run = std::function<int()>;

/// Adds a command with its options, and sets `run` when it was asked for.
using AddCommand = void (*)(Arguments& program, Run& run);

void addThermal(Arguments& program, Run& run);
void addBluetooth(Arguments& program, Run& run);
void addWatch(Arguments& program, Run& run);
void addTop(Arguments& program, Run& run);
void addExplain(Arguments& program, Run& run);
void addRecord(Arguments& program, Run& run);
void addReplay(Arguments& program, Run& run);
void addPlot(Arguments& program, Run& run);
void addMetrics(Arguments& program, Run& run);
void addCheck(Arguments& program, Run& run);
void addCompletion(Arguments& program, Run& run);

inline constexpr const char* checkCommand = "check";
/// Adds --version, which --json makes a document of the schema orv.version/1.
void addVersion(Program& program);

/// Prints the line of a check whose arguments cannot be used, and returns its exit status.
int tellCheckMisused(const std::string& why);

/// In the order in which --help lists them.
inline constexpr std::array allCommands{addThermal, addBluetooth, addWatch, addTop, addExplain, addRecord, addReplay,
    addPlot, addMetrics, addCheck, addCompletion};

} // namespace orv
