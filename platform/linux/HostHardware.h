#pragma once

#include "platform/hardware/Hardware.h"

#include <map>
#include <string>

namespace orv {

/// The Linux machine that the program runs on. Files are looked up below `root`, which is empty outside tests.
class HostHardware final : public Hardware {
public:
    explicit HostHardware(const std::string& root);

    bool hasSMC() override { return false; }
    SMCOutcome keyInfo(std::uint32_t, KeyInfo&) override { return SMCOutcome::failed(); }
    SMCOutcome readBytes(std::uint32_t, Bytes&) override { return SMCOutcome::failed(); }
    SMCOutcome keyAtIndex(std::uint32_t, std::uint32_t&) override { return SMCOutcome::failed(); }
    std::optional<std::string> systemValue(const std::string& name) override;

private:
    std::map<std::string, std::string> systemValues;
};

} // namespace orv
