#pragma once

#include <CLI/CLI.hpp>

#include <array>
#include <functional>
#include <string>

namespace orv {

/// What a command does once its arguments were read; its result is the exit status.
using Run = std::function<int()>;

/// Adds a command with its options, and sets `run` when it was asked for.
using AddCommand = void (*)(CLI::App& application, Run& run);

void addThermal(CLI::App& application, Run& run);
void addBluetooth(CLI::App& application, Run& run);
void addWatch(CLI::App& application, Run& run);
void addTop(CLI::App& application, Run& run);
void addExplain(CLI::App& application, Run& run);
void addRecord(CLI::App& application, Run& run);
void addReplay(CLI::App& application, Run& run);
void addPlot(CLI::App& application, Run& run);
void addMetrics(CLI::App& application, Run& run);
void addCheck(CLI::App& application, Run& run);
void addCompletion(CLI::App& application, Run& run);

inline constexpr const char* checkCommand = "check";
/// Prints the line of a check whose arguments cannot be used, and returns its exit status.
int tellCheckMisused(const std::string& why);

/// In the order in which --help lists them.
inline constexpr std::array allCommands{addThermal, addBluetooth, addWatch, addTop, addExplain, addRecord, addReplay,
    addPlot, addMetrics, addCheck, addCompletion};

} // namespace orv
