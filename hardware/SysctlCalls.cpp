#include "hardware/Hardware.h"

#include <sys/sysctl.h>

#include <cerrno>
#include <cstring>

extern "C" int sysctlbyname(const char* name, void* oldp, size_t* oldlenp, void*, size_t)
{
    const auto value = orv::currentHardware().systemValue(name);
    if (!value) {
        errno = ENOENT;
        return -1;
    }
    if (oldp && *oldlenp < value->size()) {
        errno = ENOMEM;
        return -1;
    }
    if (oldp)
        std::memcpy(oldp, value->data(), value->size());
    *oldlenp = value->size();
    return 0;
}
