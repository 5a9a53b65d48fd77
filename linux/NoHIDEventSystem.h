#pragma once

#include "platform/HIDEventSystem.h"

namespace orv {

/// Linux has no HID temperature services: no machine that it runs on is asked for them in vain.
class NoHIDEventSystem final : public HIDEventSystem {
public:
    bool forEachService(std::int32_t, std::int32_t, const std::function<void(HIDService&)>&) override { return true; }
};

} // namespace orv
