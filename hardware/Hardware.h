#pragma once

#include "smc/SMCParamBlock.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>

namespace orv {

/// What an SMC exchange ends with.
struct SMCOutcome {
    int status = 0; // the call's own code; a failing call writes no output
    std::uint8_t result = 0; // the SMC's result byte

    static constexpr SMCOutcome failed() { return {.status = static_cast<int>(0xe00002bc)}; } // kIOReturnError
    static constexpr SMCOutcome noDevice() { return {.status = static_cast<int>(0xe00002c0)}; } // kIOReturnNoDevice
    static constexpr SMCOutcome lost() { return {.status = kSMCReadingLost}; }
    static constexpr SMCOutcome unknownKey() { return {.result = 0x84}; }
};

/// What stands behind the IOKit and sysctl calls on a system that has none of its own: one machine. All of it is
/// called on the main thread.
class Hardware {
public:
    virtual ~Hardware() = default;

    /// Whether there is an SMC to open; asked at the beginning of every refresh.
    virtual bool hasSMC() = 0;

    struct KeyInfo {
        std::uint32_t dataSize = 0;
        std::uint32_t dataType = 0; // a four-character code
        bool operator==(const KeyInfo&) const = default;
    };
    virtual SMCOutcome keyInfo(std::uint32_t key, KeyInfo& info) = 0;

    using Bytes = std::array<std::uint8_t, 32>;
    virtual SMCOutcome readBytes(std::uint32_t key, Bytes& bytes) = 0;

    virtual SMCOutcome keyAtIndex(std::uint32_t index, std::uint32_t& key) = 0;

    /// The end of a refresh.
    virtual void closeSMC() { }

    /// The bytes of a system value, a text's with the terminating NUL; nothing for a name it does not know.
    virtual std::optional<std::string> systemValue(const std::string& name) = 0;
};

/// Sets the machine behind the calls; it must outlive them. Closes what was open on an earlier one.
void setHardware(Hardware& hardware);
Hardware& currentHardware();

/// What callers of the IOKit functions hold at this moment.
struct IOKitUsage {
    int liveObjects = 0; // matching dictionaries, iterators and services
    int openConnections = 0;
};
IOKitUsage ioKitUsage();

} // namespace orv
