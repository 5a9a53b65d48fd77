#pragma once

#include "readings/Value.h"
#include "service/Request.h"

#include <optional>
#include <string>

namespace orv {

/// What became of a request.
struct ServiceAnswer {
    std::optional<Value> reply;
    std::string error; // one line, when there is no reply
};

/// Asks the running service, and waits for it no longer than 10 seconds.
ServiceAnswer askService(Request request);

} // namespace orv
