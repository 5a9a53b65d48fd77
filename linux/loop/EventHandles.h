#pragma once

#include "base/Owned.h"

#include <systemd/sd-event.h>

namespace orv {

struct EventTraits {
    using Handle = sd_event*;
    static constexpr Handle none = nullptr;
    static void release(Handle handle) { sd_event_unref(handle); }
};

/// A source; it calls back no more once it is released.
struct EventSourceTraits {
    using Handle = sd_event_source*;
    static constexpr Handle none = nullptr;
    static void release(Handle handle) { sd_event_source_disable_unref(handle); }
};

using Event = Owned<EventTraits>;
using EventSource = Owned<EventSourceTraits>;

} // namespace orv
