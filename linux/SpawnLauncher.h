#pragma once

#include "base/FileDescriptor.h"
#include "platform/ProcessLauncher.h"

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace orv {

/// What is run for a path that the program asks for.
struct LaunchedProgram {
    std::string path;
    std::vector<std::string> arguments; // behind those that the program gives
    std::function<std::vector<std::string>()> furtherArguments = nullptr; // behind those, asked at each start
};

/// Runs children with posix_spawn and waits for them on the calling thread. Standard input is /dev/null, standard
/// output an anonymous file, so that no output can block its writer. Any thread.
class SpawnLauncher final : public ProcessLauncher {
public:
    /// Paths without a substitute are run as they are. Throws std::system_error when no descriptor is left.
    explicit SpawnLauncher(std::map<std::string, LaunchedProgram> substitutes);

    /// Returns when the child has exited. Of its output at most 64 MiB are read.
    void start(const std::string& path, const std::vector<std::string>& arguments,
        std::function<void(std::string output)> onExit) override;

    /// Runs a program without arguments whose output nobody wants. Returns when it has exited, or cannot be started.
    void run(const std::string& path);

    /// Kills the children that run and starts no more: those waiting in `start` return without calling onExit.
    void stop();

private:
    const std::map<std::string, LaunchedProgram> substitutes;
    FileDescriptor stopping; // an eventfd, readable once stopped
};

} // namespace orv
