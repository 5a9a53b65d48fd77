#pragma once

#include "refresh/RefreshingSource.h"

#include <functional>
#include <memory>

namespace orv {

/// Tells when the service would read the watch file, and never opens the companion. Main thread only.
class WatchLooks final : public RefreshingSource, public std::enable_shared_from_this<WatchLooks> {
public:
    /// With the first cycle under way.
    static std::shared_ptr<WatchLooks> create(const Platform& platform, std::function<void()> look);

private:
    WatchLooks(const Platform& platform, std::function<void()> look);
    void beginUpdate() override;

    const Platform& platform;
    const std::function<void()> look;
};

} // namespace orv
