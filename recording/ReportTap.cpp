#include "recording/ReportTap.h"

#include <algorithm>
#include <utility>

namespace orv {

ReportTap::ReportTap(RunLoop& givenRunLoop, ProcessLauncher& behind, std::function<double()> givenNow,
    std::function<void(double startedAt, const std::string& output)> onReport)
    : runLoop(givenRunLoop)
    , launcher(behind)
    , now(std::move(givenNow))
    , tell(std::move(onReport))
{
}

void ReportTap::start(
    const std::string& path, const std::vector<std::string>& arguments, std::function<void(std::string output)> onExit)
{
    const auto started = std::make_shared<Start>();
    runLoop.post([this, started] {
        started->at = now();
        starts.push_back(started);
    });
    launcher.start(path, arguments, [this, started, onExit = std::move(onExit)](std::string output) {
        runLoop.post([this, started, output] {
            std::erase(starts, started);
            tell(started->isGivenUp ? now() : started->at, output);
        });
        onExit(std::move(output));
    });
}

void ReportTap::giveUpBefore(double time)
{
    for (const auto& started : starts)
        started->isGivenUp = started->at < time;
    std::erase_if(starts, [](const auto& started) { return started->isGivenUp; });
}

} // namespace orv
