#include "orvctl/watching/WallTime.h"

#include <fmt/format.h>

#include <ctime>

namespace orv {

std::string rfc3339(WallTime time)
{
    using namespace std::chrono;
    const auto whole = floor<seconds>(time);
    const std::time_t count = system_clock::to_time_t(whole);
    std::tm parts{};
    gmtime_r(&count, &parts);
    return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}.{:03}Z", parts.tm_year + 1900, parts.tm_mon + 1,
        parts.tm_mday, parts.tm_hour, parts.tm_min, parts.tm_sec, duration_cast<milliseconds>(time - whole).count());
}

} // namespace orv
