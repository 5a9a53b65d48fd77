#include "platform/Platform.h"

#include "base/Fatal.h"

namespace orv {

namespace {

const Platform* current = nullptr;

} // namespace

void setSharedPlatform(const Platform& platform)
{
    current = &platform;
}

const Platform& sharedPlatform()
{
    if (!current)
        fatalError("a shared object was asked for before its platform was set");
    return *current;
}

} // namespace orv
