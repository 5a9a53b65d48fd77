#pragma once

#include "platform/ProcessLauncher.h"
#include "platform/RunLoop.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace orv {

/// A launcher that passes everything on and tells, on the main thread, when a child was started and what it wrote.
class ReportTap final : public ProcessLauncher {
public:
    /// `onReport` gets the time of the start, as `now` gave it on the main thread, and the output.
    ReportTap(RunLoop& runLoop, ProcessLauncher& behind, std::function<double()> now,
        std::function<void(double startedAt, const std::string& output)> onReport);

    void start(const std::string& path, const std::vector<std::string>& arguments,
        std::function<void(std::string output)> onExit) override;

    /// Whether a child is running that was not given up. Main thread only.
    bool isRunning() const { return !starts.empty(); }
    /// Waits no longer for children that were started before a time. Main thread only.
    void giveUpBefore(double time);

private:
    struct Start {
        double at = 0;
        bool isGivenUp = false;
    };

    RunLoop& runLoop;
    ProcessLauncher& launcher;
    const std::function<double()> now;
    const std::function<void(double startedAt, const std::string& output)> tell;
    std::vector<std::shared_ptr<Start>> starts; // of running children, in order
};

} // namespace orv
