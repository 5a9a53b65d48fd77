#pragma once

#include "linux/drivers/SMCAttributes.h"
#include "linux/drivers/SMCKeySource.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>

namespace orv {

/// The SMC of a Mac that runs Linux, through the kernel's applesmc or macsmc driver. The driver is looked for when the
/// SMC is first asked for, and not again. Main thread only.
class AppleSMCDriver {
public:
    /// /sys is looked up below `root`, which is empty outside tests.
    AppleSMCDriver(SMCAttributes& calls, std::string root);

    // As in Hardware.
    bool hasSMC();
    SMCOutcome keyInfo(std::uint32_t key, Hardware::KeyInfo& info);
    SMCOutcome readBytes(std::uint32_t key, Hardware::Bytes& bytes);
    SMCOutcome keyAtIndex(std::uint32_t index, std::uint32_t& key);

private:
    std::unique_ptr<SMCKeySource> findSource();
    std::optional<std::size_t> position(std::uint32_t key);
    void lookForSource();

    SMCAttributes& calls;
    const std::string root;
    bool hasLooked = false;
    std::unique_ptr<SMCKeySource> source;
    std::unordered_map<std::uint32_t, std::size_t> positions;
    std::optional<std::size_t> lastFound;
};

} // namespace orv
