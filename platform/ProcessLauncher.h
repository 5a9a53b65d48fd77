#pragma once

#include <functional>
#include <string>
#include <vector>

namespace orv {

/// Runs child processes for their standard output.
class ProcessLauncher {
public:
    virtual ~ProcessLauncher() = default;

    /// Calls `onExit` once, on some thread, with all that the child wrote, after it has exited, whatever its status;
    /// never when the child could not be started. May return before or after the exit: call it in the background.
    virtual void start(const std::string& path, const std::vector<std::string>& arguments,
        std::function<void(std::string output)> onExit) = 0;
};

} // namespace orv
