#pragma once

#import <Foundation/Foundation.h>

#include "platform/Bundle.h"

namespace orv {

/// A bundle, the main one unless another is given, and the containers of application groups.
class CocoaBundle final : public Bundle {
public:
    explicit CocoaBundle(NSBundle* givenBundle = NSBundle.mainBundle)
        : bundle(givenBundle)
    {
    }

    std::string identifier() const override;
    std::vector<std::string> resources(const std::string& extension) const override;
    std::optional<std::string> groupContainer(const std::string& applicationGroup) const override;

private:
    NSBundle* const bundle;
};

} // namespace orv
