// A machine file's bytes. What is accepted must hold what a machine relies on; what is not must say why in one line.

#include "fuzz/support/Fuzzer.h"
#include "simulated/MachineFile.h"
#include "simulated/SimulatedMac.h"

#include <algorithm>

using namespace orv;

namespace {

void requireUsable(const MachineFile& machine)
{
    if (!machine.smc)
        return;
    SimulatedMac mac(machine);
    Hardware::KeyInfo info;
    Hardware::Bytes bytes{};
    for (const auto& row : *machine.smc) {
        require(!row.readings.empty(), "a key has a reading");
        require(std::ranges::all_of(row.readings, [](const auto& each) { return each.bytes.size() <= 32; }),
            "a reading fits its block");
        for (std::size_t step = 0; step <= row.readings.size(); ++step)
            require((mac.keyInfo(row.key, info).status != 0) == row.fails
                    && (mac.readBytes(row.key, bytes).status != 0) == row.fails,
                "a key answers, or fails as its row says");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::string fault;
    auto machine = parseMachine(textOf(data, size), fault);
    require(machine.has_value() == fault.empty(), "a file is either used or refused");
    require(std::ranges::all_of(fault, [](char each) { return each >= ' ' && each <= '~'; }), "a fault is one line");
    if (!machine)
        return 0;
    machine->exchangeDelay = {};
    requireUsable(*machine);
    return 0;
}
