#include "linux/loop/ThreadStacks.h"

#include <pthread.h>

#include <cstddef>

namespace orv {

namespace {

constexpr std::size_t stackSize = 1u << 20; // the smallest huge page is twice as large

} // namespace

// std::thread takes no attributes.
void keepThreadStacksSmall()
{
    pthread_attr_t attributes;
    if (pthread_attr_init(&attributes) != 0)
        return;
    if (pthread_attr_setstacksize(&attributes, stackSize) == 0)
        pthread_setattr_default_np(&attributes);
    pthread_attr_destroy(&attributes);
}

} // namespace orv
