#pragma once

#include "base/ThreadSafety.h"

#include <memory>
#include <mutex>
#include <utility>

namespace orv {

/// One immutable value, replaced whole and taken whole. Any thread; nobody waits longer than a pointer takes to copy.
template <typename T> class Published {
public:
    void replace(T replacement)
    {
        auto next = std::make_shared<const T>(std::move(replacement));
        const std::lock_guard lock(mutex);
        current.swap(next);
    }

    std::shared_ptr<const T> take() const
    {
        const std::lock_guard lock(mutex);
        return current;
    }

private:
    mutable std::mutex mutex;
    std::shared_ptr<const T> current ORV_GUARDED_BY(mutex) = std::make_shared<const T>();
};

} // namespace orv
