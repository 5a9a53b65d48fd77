#pragma once

#include "readings/Value.h"
#include "service/Freshness.h"
#include "service/Request.h"

#include <optional>
#include <string>
#include <vector>

namespace orv {

/// How old what the service answers is by now. What was never found has no age.
struct ServiceTiming {
    Timing readings;
    std::optional<Timing> bluetoothReport;
    std::optional<Timing> watchFile;
};

/// What became of a request.
struct ServiceAnswer {
    std::optional<Value> reply;
    std::string error; // one line, when there is no reply
    std::optional<ServiceTiming> timing = std::nullopt; // absent where a reply has no time
};

/// Asks the running service, and waits for it no longer than 10 seconds.
ServiceAnswer askService(Request request);

/// The same for all requests at once, in the order of Request, within the same 10 seconds.
std::vector<ServiceAnswer> askServiceForAll();

} // namespace orv
