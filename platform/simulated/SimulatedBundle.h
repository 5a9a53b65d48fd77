#pragma once

#include "platform/Bundle.h"

#include <optional>
#include <string>

namespace orv {

/// A bundle with a temporary group container and, when there is a watch file to write, a companion that writes it.
class SimulatedBundle final : public Bundle {
public:
    /// Creates the container only for a companion; throws std::system_error when that fails.
    SimulatedBundle(std::string bundleIdentifier, std::optional<std::string> watchFile);
    /// Removes the container.
    ~SimulatedBundle() override;
    SimulatedBundle(const SimulatedBundle&) = delete;
    SimulatedBundle& operator=(const SimulatedBundle&) = delete;

    std::string identifier() const override { return bundleIdentifier; }
    std::vector<std::string> resources(const std::string& extension) const override;
    std::optional<std::string> groupContainer(const std::string& applicationGroup) const override;

    /// What the companion does when it is opened: writes its file in one step, or leaves it as it is.
    void runCompanion() const;
    /// May be called from any thread, at the end of the process.
    void removeContainer() const;

private:
    const std::string bundleIdentifier;
    const std::optional<std::string> watchFile;
    std::string container; // a path; empty without a companion
};

} // namespace orv
