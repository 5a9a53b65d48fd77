#include "orvctl/views/Progress.h"

#include <fmt/core.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <string>

namespace orv {

namespace {

constexpr std::chrono::milliseconds untilFirst{500}; // what is done sooner needs none
constexpr std::chrono::milliseconds between{200};
constexpr const char* clearLine = "\r\x1b[K";

std::string clockText(double seconds)
{
    const auto whole = static_cast<std::int64_t>(seconds);
    return fmt::format("{}:{:02}:{:02}", whole / 3600, whole / 60 % 60, whole % 60);
}

} // namespace

Progress::Progress(bool isWanted)
    : isShown(isWanted && isatty(STDERR_FILENO))
    , next(Clock::now() + untilFirst)
{
}

Progress::~Progress()
{
    if (hasLine)
        std::fputs(clearLine, stderr);
}

void Progress::show(double reached, double end)
{
    if (!isShown || end <= 0)
        return;
    const auto now = Clock::now();
    if (now < next)
        return;
    next = now + between;
    hasLine = true;
    const auto percent = static_cast<int>(std::clamp(reached / end, 0.0, 1.0) * 100);
    std::fprintf(stderr, "%s%s of %s (%d %%)", clearLine, clockText(reached).c_str(), clockText(end).c_str(), percent);
}

} // namespace orv
