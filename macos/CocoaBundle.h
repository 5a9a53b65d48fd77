#pragma once

#include "platform/Bundle.h"

namespace orv {

/// The main bundle, and the containers of application groups.
class CocoaBundle final : public Bundle {
public:
    std::string identifier() const override;
    std::vector<std::string> resources(const std::string& extension) const override;
    std::optional<std::string> groupContainer(const std::string& applicationGroup) const override;
};

} // namespace orv
