#include "base/MainThread.h"

#include <thread>

namespace orv {

namespace {

const std::thread::id mainThread = std::this_thread::get_id();

} // namespace

bool isMainThread()
{
    return std::this_thread::get_id() == mainThread;
}

} // namespace orv
