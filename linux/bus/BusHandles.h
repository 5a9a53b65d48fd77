#pragma once

#include "base/Owned.h"

#include <systemd/sd-bus.h>

namespace orv {

/// A connection; what was not sent is dropped when it is closed.
struct BusTraits {
    using Handle = sd_bus*;
    static constexpr Handle none = nullptr;
    static void release(Handle handle) { sd_bus_close_unref(handle); }
};

struct BusMessageTraits {
    using Handle = sd_bus_message*;
    static constexpr Handle none = nullptr;
    static void release(Handle handle) { sd_bus_message_unref(handle); }
};

/// A match, or a call that waits for its reply: nothing is called back any more once it is released.
struct BusSlotTraits {
    using Handle = sd_bus_slot*;
    static constexpr Handle none = nullptr;
    static void release(Handle handle) { sd_bus_slot_unref(handle); }
};

using BusConnection = Owned<BusTraits>;
using BusMessage = Owned<BusMessageTraits>;
using BusSlot = Owned<BusSlotTraits>;

} // namespace orv
