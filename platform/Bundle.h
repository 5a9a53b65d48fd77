#pragma once

#include <optional>
#include <string>
#include <vector>

namespace orv {

/// The program as it is installed, and the container that it shares with the menu-bar application.
class Bundle {
public:
    virtual ~Bundle() = default;

    /// The bundle identifier, which is the name of the service; empty when there is none.
    virtual std::string identifier() const = 0;

    /// Paths of the files lying directly in the resources folder that have this extension, in the platform's order.
    virtual std::vector<std::string> resources(const std::string& extension) const = 0;

    /// The folder shared by the applications of a group; nothing when there is none.
    virtual std::optional<std::string> groupContainer(const std::string& applicationGroup) const = 0;
};

} // namespace orv
