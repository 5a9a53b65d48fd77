#pragma once

#include <systemd/sd-bus.h>

#include <cstdint>
#include <optional>
#include <string>

namespace orv {

/// What systemd says of a service unit, in its words.
struct UnitState {
    std::string active; // "failed"
    std::string sub; // "auto-restart"
    std::string result; // "exit-code"
    std::int64_t status = 0; // with which the main process ended

    bool hasFailed() const { return active == "failed" || sub == "auto-restart"; }
    /// Whether it failed for want of a user namespace.
    bool lacksNamespace() const;
    /// "failed (exit-code, status 217/USER)"
    std::string text() const;
};

/// Asks the systemd on this bus, and waits half a second at most; nothing when there is none.
std::optional<UnitState> unitState(sd_bus* bus, const char* unit);

} // namespace orv
