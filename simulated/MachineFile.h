#pragma once

#include "readings/Value.h"

#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orv {

/// One value of an SMC key as a machine file lists it.
struct SMCReading {
    std::string bytes; // at most 32
};

struct SMCRow {
    std::uint32_t key = 0; // four-character codes
    std::uint32_t type = 0;
    std::vector<SMCReading> readings{1}; // stepped through with each read, then from the start again
    std::optional<std::uint32_t> size; // the reported size, when it is not that of the reading
    bool fails = false; // key info and bytes return an error
};

struct HIDRow {
    Value locationID; // null when absent
    std::optional<double> temperature; // degrees Celsius; absent: a service without an event
};

/// A whole Mac, as a machine file describes it. orv-machine-file(5) documents the format.
struct MachineFile {
    std::string description;
    std::map<std::string, std::string> systemValues; // the bytes that sysctl answers, a text's with its NUL
    std::chrono::duration<double, std::milli> exchangeDelay{};
    std::optional<std::vector<SMCRow>> smc; // absent: no SMC service
    std::vector<HIDRow> hid;
    std::string profilerOutput;
    std::optional<std::string> watchFile; // absent: no companion
};

/// Reads the content of a machine file. When it cannot be used, `fault` is one line that names the member and what is
/// wrong.
std::optional<MachineFile> parseMachine(std::string_view bytes, std::string& fault);

} // namespace orv
