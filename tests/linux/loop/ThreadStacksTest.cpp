#include "linux/loop/ThreadStacks.h"

#include <gtest/gtest.h>

#include <pthread.h>

#include <thread>

namespace orv {

namespace {

TEST(ThreadStacksTest, StacksHaveNoRoomForATransparentHugePage)
{
    keepThreadStacksSmall();
    std::size_t size = 0;
    std::thread([&size] {
        pthread_attr_t attributes;
        ASSERT_EQ(pthread_getattr_np(pthread_self(), &attributes), 0);
        pthread_attr_getstacksize(&attributes, &size);
        pthread_attr_destroy(&attributes);
    }).join();
    EXPECT_GT(size, 0u);
    EXPECT_LT(size, 2u << 20);
}

} // namespace

} // namespace orv
