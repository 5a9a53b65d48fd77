#pragma once

#include "linux/drivers/SMCAttributes.h"
#include "linux/drivers/SMCKeySource.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace orv {

/// What of the SMC this process gets through the kernel's driver.
enum class SMCAccess {
    none, // there is no driver
    files, // those sensors for which the driver has files
    refused, // the same, because the rest is not for this process
    everyKey,
};

/// The SMC of a Mac that runs Linux, through the kernel's applesmc or macsmc driver. A driver that comes late, or goes
/// and comes back, is taken up by the next refresh. Main thread only.
class AppleSMCDriver {
public:
    /// /sys is looked up below `root`, which is empty outside tests. `onNewKeys` is called, within hasSMC, when the SMC
    /// has other keys than before.
    AppleSMCDriver(SMCAttributes& calls, std::string root, std::function<void()> onNewKeys = {});

    // As in Hardware.
    bool hasSMC();
    SMCOutcome keyInfo(std::uint32_t key, Hardware::KeyInfo& info);
    SMCOutcome readBytes(std::uint32_t key, Hardware::Bytes& bytes);
    SMCOutcome keyAtIndex(std::uint32_t index, std::uint32_t& key);
    void closeSMC();

    /// Of the driver that was last looked for.
    SMCAccess access() const;

private:
    std::unique_ptr<SMCKeySource> findSource() const;
    std::optional<std::size_t> position(std::uint32_t key);
    void lookFirst();
    void lookAgain();
    void lookForMore();
    void look();
    void use(std::unique_ptr<SMCKeySource> found);
    std::vector<std::string> placesToWatch() const;

    SMCAttributes& calls;
    const std::string root;
    const std::function<void()> onNewKeys;
    bool hasLooked = false;
    bool hasNewKeys = false;
    int looksLeft = 0; // for keys beyond those of `source`
    std::vector<std::string> places; // one of these appears with a driver, while there is none
    std::unique_ptr<SMCKeySource> source;
    std::unordered_map<std::uint32_t, std::size_t> positions;
    std::optional<std::size_t> lastFound;
};

} // namespace orv
