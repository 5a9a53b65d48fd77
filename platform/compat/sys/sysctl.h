#pragma once

// sysctlbyname as Apple's <sys/sysctl.h> declares it, for systems that have none. It is defined in
// hardware/SysctlCalls.cpp.

#include <cstddef>

extern "C" int sysctlbyname(const char* name, void* oldp, size_t* oldlenp, void* newp, size_t newlen);
