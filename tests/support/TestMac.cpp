#include "tests/support/TestMac.h"

#include "smc/FourCharCode.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

namespace orv {

namespace {

MachineFile parsed(const std::string& text)
{
    std::string fault;
    auto machine = parseMachine(text, fault);
    EXPECT_TRUE(machine) << fault;
    return std::move(machine).value_or(MachineFile{});
}

} // namespace

SMCOutcome RecordingHardware::keyInfo(std::uint32_t key, KeyInfo& info)
{
    exchanges.push_back("info " + fourCharString(key));
    return behind.keyInfo(key, info);
}

SMCOutcome RecordingHardware::readBytes(std::uint32_t key, Bytes& bytes)
{
    exchanges.push_back("bytes " + fourCharString(key));
    if (fourCharString(key) == keyWithFailingBytes)
        return failure;
    return behind.readBytes(key, bytes);
}

SMCOutcome RecordingHardware::keyAtIndex(std::uint32_t index, std::uint32_t& key)
{
    exchanges.push_back("index " + std::to_string(index));
    if (index == failingIndex)
        return SMCOutcome::failed();
    return behind.keyAtIndex(index, key);
}

std::size_t RecordingHardware::count(const std::string& beginning) const
{
    return static_cast<std::size_t>(
        std::ranges::count_if(exchanges, [&](const auto& exchange) { return exchange.starts_with(beginning); }));
}

void ManualLauncher::start(
    const std::string& path, const std::vector<std::string>& arguments, std::function<void(std::string output)> onExit)
{
    auto command = path;
    for (const auto& argument : arguments)
        command += " " + argument;
    commands.push_back(command);
    if (canStart)
        running.push_back(std::move(onExit));
}

void ManualLauncher::finish(const std::string& output)
{
    ASSERT_FALSE(running.empty());
    const auto onExit = std::move(running.front());
    running.erase(running.begin());
    onExit(output);
}

TestMac::TestMac(const std::string& text)
    : machine(parsed(text))
    , simulation(machine, "org.orv.Test", runLoop, launcher)
    , hardware(simulation.mac)
{
    setHardware(hardware);
}

std::string machineText(
    const std::string& model, const std::string& processor, const std::string& smcRows, const std::string& hidRows)
{
    return R"({"sysctl": {"hw.model": ")" + model + R"(", "machdep.cpu.brand_string": ")" + processor
        + R"(", "hw.perflevel0.logicalcpu": 4, "hw.perflevel1.logicalcpu": 4}, "smc": [)" + smcRows + R"(], "hid": [)"
        + hidRows + "]}";
}

std::string intelText(const std::string& smcRows)
{
    return machineText("MacBookPro11,4", "Intel(R) Core(TM) i7-4770HQ CPU @ 2.20GHz", smcRows);
}

} // namespace orv
