#pragma once

#include <utility>

namespace orv {

/// The one owner of a C resource. Traits give `Handle`, `none` and `release(Handle)`.
template <typename Traits> class Owned {
public:
    using Handle = typename Traits::Handle;

    Owned() = default;
    explicit Owned(Handle owned)
        : handle(owned)
    {
    }
    Owned(Owned&& other) noexcept
        : handle(std::exchange(other.handle, Traits::none))
    {
    }
    Owned& operator=(Owned&& other) noexcept
    {
        std::swap(handle, other.handle);
        return *this;
    }
    ~Owned() { reset(); }

    Handle get() const { return handle; }
    explicit operator bool() const { return handle != Traits::none; }

    /// Where a C call stores a new handle; what was owned before is released first.
    Handle* out()
    {
        reset();
        return &handle;
    }

    void reset()
    {
        if (handle != Traits::none)
            Traits::release(std::exchange(handle, Traits::none));
    }

private:
    Handle handle = Traits::none;
};

} // namespace orv
