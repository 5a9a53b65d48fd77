#include "thermal/ZpSystemInfo.h"

#include "base/Fatal.h"
#include "readings/Text.h"

#include <sys/sysctl.h>

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <sys/types.h>
#include <vector>

namespace orv::ZpSystemInfo {

std::string sysctlString(const char* name)
{
    std::size_t size = 0;
    sysctlbyname(name, nullptr, &size, nullptr, 0);
    if (static_cast<ssize_t>(size) < 0)
        fatalError("a system value has a negative length");
    std::vector<char> buffer(size);
    sysctlbyname(name, buffer.data(), &size, nullptr, 0);
    const auto terminator = std::ranges::find(buffer, '\0');
    if (terminator == buffer.end())
        fatalError("the machine model or the processor name is missing");
    return repairedUTF8({buffer.data(), static_cast<std::size_t>(terminator - buffer.begin())});
}

std::string modelIdentifier()
{
    return sysctlString("hw.model");
}

std::string cpuBrandString()
{
    return sysctlString("machdep.cpu.brand_string");
}

} // namespace orv::ZpSystemInfo
