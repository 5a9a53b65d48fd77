#pragma once

#include "platform/ProcessLauncher.h"
#include "simulated/ManualRunLoop.h"
#include "simulated/SimulatedPlatform.h"
#include "smc/SMC.h"

#include <functional>
#include <string>
#include <vector>

namespace orv {

/// Passes everything on to a machine and notes what was asked of it; single exchanges can be made to fail.
class RecordingHardware final : public Hardware {
public:
    explicit RecordingHardware(Hardware& machine)
        : behind(machine)
    {
    }

    bool hasSMC() override { return isPresent && behind.hasSMC(); }
    SMCOutcome keyInfo(std::uint32_t key, KeyInfo& info) override;
    SMCOutcome readBytes(std::uint32_t key, Bytes& bytes) override;
    SMCOutcome keyAtIndex(std::uint32_t index, std::uint32_t& key) override;
    void closeSMC() override { behind.closeSMC(); }
    std::optional<std::string> systemValue(const std::string& name) override { return behind.systemValue(name); }

    bool isPresent = true;
    std::string keyWithFailingBytes;
    std::optional<std::uint32_t> failingIndex;
    SMCOutcome failure = SMCOutcome::failed();
    std::vector<std::string> exchanges; // "info TC0P", "bytes TC0P", "index 3"

    std::size_t count(const std::string& beginning) const;

private:
    Hardware& behind;
};

/// A launcher whose children run until they are finished by the test.
class ManualLauncher final : public ProcessLauncher {
public:
    void start(const std::string& path, const std::vector<std::string>& arguments,
        std::function<void(std::string output)> onExit) override;

    /// Ends the oldest running child.
    void finish(const std::string& output);

    bool canStart = true;
    std::vector<std::string> commands; // of the children started so far
    std::vector<std::function<void(std::string output)>> running;
};

/// A simulated Mac from the text of a machine file, on the manual clock, with everything it was asked on record.
struct TestMac {
    explicit TestMac(const std::string& machineText);
    /// Ends the cycles under way, which keep their objects alive.
    ~TestMac() { runLoop.advance(Seconds(5)); }
    TestMac(const TestMac&) = delete;
    TestMac& operator=(const TestMac&) = delete;

    void sleep() { simulation.workspace.sleep(); }
    void wake() { simulation.workspace.wake(); }

    MachineFile machine;
    ManualRunLoop runLoop;
    ManualLauncher launcher;
    SimulatedPlatform simulation;
    RecordingHardware hardware;
    SMC smc;
};

/// The text of a machine file: a model, a processor, SMC rows and HID rows.
std::string machineText(const std::string& model, const std::string& processor, const std::string& smcRows,
    const std::string& hidRows = "");

/// The same for an Intel machine.
std::string intelText(const std::string& smcRows);

} // namespace orv
