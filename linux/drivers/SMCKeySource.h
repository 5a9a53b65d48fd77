#pragma once

#include "hardware/Hardware.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace orv {

/// One key of the SMC, as the driver lists it.
struct SMCKey {
    std::uint32_t name = 0; // a four-character code; 0 when it could not be found out
    Hardware::KeyInfo info;
    bool operator==(const SMCKey&) const = default;
};

/// A way to the SMC's keys through the attributes of a driver.
class SMCKeySource {
public:
    virtual ~SMCKeySource() = default;

    /// In index order; fixed for the life of the source.
    virtual const std::vector<SMCKey>& keys() const = 0;
    /// Whether these are all keys that the SMC has.
    virtual bool isComplete() const = 0;
    /// The value of the key at a position in `keys`; `noDevice` when the driver is not there any more.
    virtual SMCOutcome readBytes(std::size_t position, Hardware::Bytes& bytes) = 0;
    /// Called after the last reading of a refresh.
    virtual void endTurn() { }
};

} // namespace orv
