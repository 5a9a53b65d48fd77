#pragma once

#include "platform/ProcessLauncher.h"

namespace orv {

/// Children run as NSTask, with the standard input and standard error of this process.
class CocoaProcessLauncher final : public ProcessLauncher {
public:
    void start(const std::string& path, const std::vector<std::string>& arguments,
        std::function<void(std::string output)> onExit) override;
};

} // namespace orv
