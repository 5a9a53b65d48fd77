#pragma once

#include "platform/Bundle.h"

#include <string>
#include <utility>

namespace orv {

/// The installed program on Linux.
class XdgBundle final : public Bundle {
public:
    explicit XdgBundle(std::string givenIdentifier)
        : bundleIdentifier(std::move(givenIdentifier))
    {
    }

    std::string identifier() const override { return bundleIdentifier; }
    std::vector<std::string> resources(const std::string&) const override { return {}; }
    std::optional<std::string> groupContainer(const std::string&) const override { return std::nullopt; }

private:
    const std::string bundleIdentifier;
};

} // namespace orv
