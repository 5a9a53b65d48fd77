#pragma once

#include <string>

namespace orv::ZpSystemInfo {

/// The value of a text sysctl as valid UTF-8. A name that the kernel does not know, or a value without a terminating
/// NUL, stops the process: both texts below exist on every supported machine.
std::string sysctlString(const char* name);

/// For example "MacBookPro17,1".
std::string modelIdentifier();

/// For example "Apple M1". Asked of the kernel afresh at each call.
std::string cpuBrandString();

} // namespace orv::ZpSystemInfo
