#pragma once

#include "base/ThreadSafety.h"
#include "bluetooth/WatchFile.h"
#include "platform/Bundle.h"

#include <mutex>
#include <optional>
#include <string>

namespace orv {

/// A bundle with a temporary group container and, when there is a watch file to write, a companion that writes it.
class SimulatedBundle final : public Bundle {
public:
    SimulatedBundle(std::string bundleIdentifier, std::optional<std::string> watchFile);
    /// Removes the container.
    ~SimulatedBundle() override;
    SimulatedBundle(const SimulatedBundle&) = delete;
    SimulatedBundle& operator=(const SimulatedBundle&) = delete;

    std::string identifier() const override { return bundleIdentifier; }
    std::vector<std::string> resources(const std::string& extension) const override;
    std::optional<std::string> groupContainer(const std::string& applicationGroup) const override;

    /// What the companion does when it is opened: writes its file in one step, or leaves it as it is.
    void runCompanion();
    /// What it writes from now on, at once where it was opened before; a machine that is given a content has a
    /// companion. Nothing: the file goes, and the companion writes none.
    void setWatchFile(std::optional<std::string> content);
    /// From now on the file stands there as soon as there is a content, without a companion.
    void keepWatchFileWritten();
    /// Removes the container, which the companion's first run creates. Any thread; no companion runs afterwards.
    void removeContainer();

private:
    bool makeContainer() ORV_REQUIRES(mutex);

    const std::string bundleIdentifier;
    bool hasCompanion;
    bool isKeptWritten = false;

    // Nothing allocates while the mutex is held: when memory runs out, the container is still to be removed.
    mutable std::mutex mutex;
    std::optional<std::string> watchFile ORV_GUARDED_BY(mutex);
    enum class State { absent, present, removed } state ORV_GUARDED_BY(mutex) = State::absent;
    struct Paths {
        std::string container;
        std::string file = container + watchFileInContainer;
        std::string support = file.substr(0, file.rfind('/'));
        std::string library = support.substr(0, support.rfind('/'));
        std::string unfinished = file + ".new";
    } paths; // their common beginning gets its final name with the container, and stays as it is from then on
};

} // namespace orv
