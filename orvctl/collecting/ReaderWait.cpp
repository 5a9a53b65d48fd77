#include "orvctl/collecting/ReaderWait.h"

#include <poll.h>

#include <algorithm>

namespace orv {

bool waitWhileRead(int output, std::chrono::steady_clock::time_point until)
{
    using namespace std::chrono;
    for (auto now = steady_clock::now(); now < until; now = steady_clock::now()) {
        pollfd reader{output, 0, 0};
        const auto milliseconds =
            std::min<std::int64_t>(ceil<std::chrono::milliseconds>(until - now).count(), 3'600'000);
        if (poll(&reader, 1, static_cast<int>(milliseconds)) > 0)
            return false;
    }
    return true;
}

} // namespace orv
