#pragma once

#include "platform/Bundle.h"

#include <string>

namespace orv {

/// The installed program on Linux: its resources lie in lib/orv/Resources beside its bin/.
class XdgBundle final : public Bundle {
public:
    XdgBundle(std::string bundleIdentifier, std::string installationPrefix);

    std::string identifier() const override { return bundleIdentifier; }
    /// Sorted by name.
    std::vector<std::string> resources(const std::string& extension) const override;
    /// The group's folder in $XDG_DATA_HOME; nothing when neither that nor $HOME is set. It need not exist.
    std::optional<std::string> groupContainer(const std::string& applicationGroup) const override;

private:
    const std::string bundleIdentifier;
    const std::string prefix;
};

} // namespace orv
