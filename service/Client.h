#pragma once

#include "readings/Value.h"

#include <optional>
#include <string>

namespace orv {

enum class Request { thermal, bluetooth };

struct ServiceAnswer {
    std::optional<Value> reply;
    std::string error; // one line, when there is no reply
};

/// Asks the running service, and waits for it no longer than 10 seconds.
ServiceAnswer askService(Request request);

} // namespace orv
