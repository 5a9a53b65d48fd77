#pragma once

#include "hardware/Hardware.h"
#include "linux/drivers/AppleSMCDriver.h"

#include <functional>
#include <map>
#include <string>

namespace orv {

/// The Linux machine that the program runs on. Files are looked up below `root`, which is empty outside tests.
class HostHardware final : public Hardware {
public:
    /// `onNewKeys` is called, within hasSMC, when the SMC has other keys than before.
    HostHardware(const std::string& root, SMCAttributes& attributes, std::function<void()> onNewKeys = {});

    bool hasSMC() override { return driver.hasSMC(); }
    SMCOutcome keyInfo(std::uint32_t key, KeyInfo& info) override { return driver.keyInfo(key, info); }
    SMCOutcome readBytes(std::uint32_t key, Bytes& bytes) override { return driver.readBytes(key, bytes); }
    SMCOutcome keyAtIndex(std::uint32_t index, std::uint32_t& key) override { return driver.keyAtIndex(index, key); }
    void closeSMC() override { driver.closeSMC(); }
    std::optional<std::string> systemValue(const std::string& name) override;

    SMCAccess smcAccess() const { return driver.access(); }

private:
    AppleSMCDriver driver;
    std::map<std::string, std::string> systemValues;
};

} // namespace orv
