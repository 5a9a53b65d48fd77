#pragma once

#include "readings/Readings.h"

#include <cstdint>
#include <optional>

namespace orv {

/// Which of a fan's speeds could be read; the others count as 0.
struct ReadSpeeds {
    bool actual = false;
    bool minimum = false;
    bool maximum = false;
};

/// Is told what a reading of the fans comes to.
class FanObserver {
public:
    virtual ~FanObserver() = default;

    /// Nothing is said of the speeds of a fan that is left out, because one was lost to another program.
    virtual void fanRead(std::int64_t index, const FanEntry& fan, std::optional<ReadSpeeds> readSpeeds) = 0;
};

} // namespace orv
