#pragma once

#include "platform/HIDEventSystem.h"

namespace orv {

/// IOKit's HID event system.
class IOHIDEventSystem final : public HIDEventSystem {
public:
    bool forEachService(std::int32_t page, std::int32_t usage, const std::function<void(HIDService&)>& visit) override;
};

} // namespace orv
