#pragma once

#include "platform/ProcessLauncher.h"

#include <functional>
#include <string>
#include <vector>

namespace orv {

/// A profiler that runs inside this process and has ended when `start` returns.
class SimulatedProfiler final : public ProcessLauncher {
public:
    /// `output` is what it prints and may change between two runs.
    explicit SimulatedProfiler(const std::string& output)
        : report(output)
    {
    }

    void start(
        const std::string&, const std::vector<std::string>&, std::function<void(std::string output)> onExit) override
    {
        onExit(report);
    }

private:
    const std::string& report;
};

} // namespace orv
